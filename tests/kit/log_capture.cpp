#include "tests/kit/log_capture.h"

#include <sstream>

#include "driver/support/log.h"
#include "driver/support/log_files.h"
#include "tests/kit/scratch_folder.h"
#ifndef _WIN32
#include "platform/posix/paths.h"
#endif

namespace orvex {

namespace fs = std::filesystem;

namespace {

fs::path MachinePath(const char* windowsPath) {
#ifdef _WIN32
    return windowsPath;
#else
    return posix::PosixPath(windowsPath);
#endif
}

// Returns "[time] [TID: n] rest" without its first two fields.
std::string WithoutStamp(const std::string& line) {
    const size_t thread = line.find("] [TID: ");
    const size_t rest = thread == std::string::npos ? thread : line.find("] ", thread + 8);
    return rest == std::string::npos ? line : line.substr(rest + 2);
}

}  // namespace

fs::path LogFile() {
    return MachinePath(GetLogPath().get());
}

fs::path LogControlFile() {
    return LogFile().replace_extension("dat");
}

std::vector<std::string> ReadLogLines(const fs::path& log) {
    std::vector<std::string> lines;
    std::istringstream text(ReadBytes(log));
    for (std::string line; std::getline(text, line);) lines.push_back(WithoutStamp(line));
    return lines;
}

LogCapture::LogCapture(uint32_t mask) : LogCapture(LogFile(), mask) {}

LogCapture::LogCapture(const fs::path& log, uint32_t mask)
    : log_(log), control_(fs::path(log).replace_extension("dat")) {
    fs::create_directories(log_.parent_path());
    fs::remove(log_);
    WriteBytes(control_, std::to_string(mask));
    LoadLogMask();
}

LogCapture::~LogCapture() {
    std::error_code ignored;
    fs::remove(log_, ignored);
    fs::remove(control_, ignored);
    LoadLogMask();
}

std::vector<std::string> LogCapture::TakeLines() {
    std::vector<std::string> lines = ReadLogLines(log_);
    fs::remove(log_);
    return lines;
}

}  // namespace orvex
