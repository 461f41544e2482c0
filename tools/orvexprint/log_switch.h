// Turns a driver's diagnostic log on for a while.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace orvex::tools::print {

class LogSwitch {
  public:
    // Writes `mask` (1: errors and information, 3: the trace too) into the control file, its folder made when
    // it is missing. Throws std::runtime_error when that fails.
    LogSwitch(std::filesystem::path control, int mask);
    // Puts back what stood in the control file, or removes it.
    ~LogSwitch();
    LogSwitch(const LogSwitch&) = delete;
    LogSwitch& operator=(const LogSwitch&) = delete;

  private:
    std::filesystem::path control_;
    std::optional<std::string> before_;
};

}  // namespace orvex::tools::print
