// The end of a program by Ctrl-C.
#pragma once

#include <filesystem>

namespace orvex::tools {

// Makes Ctrl-C and requests to terminate remove every guarded file and end the program at once: natively by
// the signal itself, which a shell shows as 130 for Ctrl-C, on Windows with the status 130. A signal that the
// program was started to ignore stays ignored.
void EndCleanlyOnInterrupt();

// Guard of an unfinished file, which does not outlive the program.
class RemovedOnInterrupt {
  public:
    // `path` must outlive the guard; `descriptor` is the open file. At most 8 files are guarded at a time,
    // others are left.
    RemovedOnInterrupt(const std::filesystem::path& path, int descriptor);
    ~RemovedOnInterrupt();
    RemovedOnInterrupt(const RemovedOnInterrupt&) = delete;
    RemovedOnInterrupt& operator=(const RemovedOnInterrupt&) = delete;

  private:
    int place_ = -1;
};

// Makes an access of memory that is not there, while this exists, end the program with a message and the
// status 1 instead of a crash. Guarded files are removed.
class FaultMessage {
  public:
    // `message` must outlive this.
    explicit FaultMessage(const char* message);
    ~FaultMessage();
    FaultMessage(const FaultMessage&) = delete;
    FaultMessage& operator=(const FaultMessage&) = delete;
};

}  // namespace orvex::tools
