// The helper program beside the tests, run as a process of its own.
#pragma once

#include <string>
#include <vector>

namespace orvex {

class OtherProcess {
  public:
    // Throws std::runtime_error if it can't be started.
    explicit OtherProcess(const std::vector<std::string>& arguments);
    // Waits for its end.
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // Waits for its end; returns its exit code, or -1 if a signal ended it.
    int Wait();

  private:
#ifdef _WIN32
    void* process_ = nullptr;
#else
    int process_ = 0;
#endif
    bool ended_ = false;
    int exitCode_ = 0;
};

}  // namespace orvex
