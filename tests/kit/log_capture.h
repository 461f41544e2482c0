// Turns a diagnostic log on and reads it back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex {

class LogCapture {
  public:
    // Writes the control file with `mask` (1 = errors and information, 2 = trace, 3 = all), loads it, and
    // starts with an empty log.
    explicit LogCapture(uint32_t mask = 3);
    // Does the same for the log of a driver, which loads its mask itself when it enables a device or starts a
    // job.
    LogCapture(const std::filesystem::path& log, uint32_t mask);
    // Turns the log off and removes its files.
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Returns the lines since the start or the last call, without time and thread: "[Error] text".
    std::vector<std::string> TakeLines();

  private:
    std::filesystem::path log_;
    std::filesystem::path control_;
};

// Return the log of this program's own code and its control file, as paths of this machine.
std::filesystem::path LogFile();
std::filesystem::path LogControlFile();

// Returns the lines of a log file, without time and thread.
std::vector<std::string> ReadLogLines(const std::filesystem::path& log);

}  // namespace orvex
