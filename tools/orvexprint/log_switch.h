// The driver's diagnostic log, turned on for this program alone.
#pragma once

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>

#include "tools/host/driver_library.h"
#include "tools/host/import_patch.h"

namespace orvex::tools::print {

// Answers the driver's reading of its control file with a mask of its own. The file itself, which every
// process with the driver reads, stays as it is: two runs at once do not disturb each other, and one that is
// killed leaves nothing.
class LogSwitch : public ImportService<LogSwitch> {
  public:
    // `mask` is 1 for errors and information, 3 also for the trace. Creates the log's folder if it is
    // missing. The driver must outlive the switch. Throws std::runtime_error if the folder takes no files.
    LogSwitch(const DriverLibrary& driver, int mask);

  private:
    struct Replacements;

    HANDLE OpenMask() const;

    std::filesystem::path folder_;
    std::string control_;  // as the driver names it
    std::string mask_;
};

// The part of the driver's log that comes after now.
class LogTail {
  public:
    explicit LogTail(const DriverLibrary& driver);

    // Writes the lines of this thread as a tree.
    void WriteTree(std::ostream& out) const;

  private:
    std::filesystem::path log_;
    std::uintmax_t begin_ = 0;
};

// Returns a warning, in words, if the control file turns the log on for every program; else an empty text.
std::string LogLeftOn(const DriverLibrary& driver);

}  // namespace orvex::tools::print
