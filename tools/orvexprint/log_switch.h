// The driver's diagnostic log, turned on for a while.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvex::tools::print {

class LogSwitch {
  public:
    // Writes `mask` (1: errors and information, 3: also the trace) to the control file, and creates its
    // folder if missing. Throws std::runtime_error.
    LogSwitch(std::filesystem::path control, int mask);
    // Restores the control file, or removes it if it did not exist.
    ~LogSwitch();
    LogSwitch(const LogSwitch&) = delete;
    LogSwitch& operator=(const LogSwitch&) = delete;

  private:
    std::filesystem::path control_;
    std::optional<std::string> before_;
};

}  // namespace orvex::tools::print
