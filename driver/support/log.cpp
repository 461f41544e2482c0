#include "driver/support/log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>

#include "driver/support/handle.h"
#include "driver/support/log_files.h"

namespace orvex {

namespace {

constexpr size_t kMaxMutexName = 260;
constexpr DWORD kMutexWaitMs = 100;
constexpr LONGLONG kMaxLogBytes = 0x6400000;
constexpr std::string_view kLevelTags[] = {"[Error] ", "[Info]  ", "[Trace] "};

// Returns the low 32 bits of the number in the control file, all of them set for one past 64 bits.
uint32_t ReadLogMask() {
    const char* path = ControlFilePath();
    if (path == nullptr) return 0;
    const OwnedHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return 0;
    char text[64] = {};
    file.Read(text, sizeof text - 1);
    // The Windows runtime's sscanf crashes when it is out of memory; its strtol stops at 31 bits.
    return static_cast<uint32_t>(strtoull(text, nullptr, 10));
}

// Opens the log for appending, at its end. A link planted in its place is opened itself, not followed.
HANDLE OpenForAppending(const char* path) {
    return CreateFileA(path, FILE_APPEND_DATA | SYNCHRONIZE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

// Collects a line in a small buffer that it appends to the log.
class LineWriter final : public TextSink {
  public:
    explicit LineWriter(HANDLE file) : file_(file) {}

    void Append(std::string_view piece) override {
        while (!piece.empty()) {
            if (used_ == sizeof buffer_) Flush();
            const size_t copied = std::min(piece.size(), sizeof buffer_ - used_);
            memcpy(buffer_ + used_, piece.data(), copied);
            used_ += copied;
            piece.remove_prefix(copied);
        }
    }

    void Flush() {
        DWORD written = {};
        WriteFile(file_, buffer_, static_cast<DWORD>(used_), &written, nullptr);
        used_ = 0;
    }

  private:
    HANDLE file_;
    size_t used_ = 0;
    char buffer_[1024];
};

void WriteLine(HANDLE file, const SYSTEMTIME& time, LogLevel level, const char* format,
               const LogArgument* arguments, size_t count) {
    LineWriter line(file);
    const LogArgument stamp[] = {time.wYear,   time.wMonth,  time.wDay,          time.wHour,
                                 time.wMinute, time.wSecond, time.wMilliseconds, GetCurrentThreadId()};
    FormatLogText(line, "[%d-%02d-%02d %02d:%02d:%02d.%03d] [TID: %d] ", stamp, std::size(stamp));
    const auto tag = static_cast<size_t>(level);
    if (tag < std::size(kLevelTags)) line.Append(kLevelTags[tag]);
    FormatLogText(line, format, arguments, count);
    line.Append("\n");
    line.Flush();
}

}  // namespace

void LoadLogMask() {
    // The old mask is in force until the new one is known, so that other threads lose no lines.
    logMask = ReadLogMask();
}

void WriteLogLine(LogLevel level, const char* format, const LogArgument* arguments, size_t count) {
    SYSTEMTIME time;
    GetSystemTime(&time);
    const PreservedLastError lastError;  // callers of a hook read the one that it leaves
    const char* path = LogPath();
    if (path == nullptr) return;

    char mutexName[kMaxMutexName];
    snprintf(mutexName, sizeof mutexName, "%s", path);
    std::replace(mutexName, mutexName + strlen(mutexName), '\\', '/');
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, nullptr, TRUE};
    const HANDLE mutex = CreateMutexA(&attributes, FALSE, mutexName);
    if (WaitForSingleObject(mutex, kMutexWaitMs) != WAIT_OBJECT_0) {
        ReleaseMutex(mutex);
        CloseHandle(mutex);
        return;
    }

    HANDLE file = OpenForAppending(path);
    // Deliberate: a log that can't be opened leaves the mutex owned and its handle open.
    if (file == INVALID_HANDLE_VALUE) return;
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(file, &size) && size.QuadPart > kMaxLogBytes) {
        CloseHandle(file);
        MoveLogToBackup(path);
        file = OpenForAppending(path);
        if (file == INVALID_HANDLE_VALUE) return;
    }
    WriteLine(file, time, level, format, arguments, count);
    CloseHandle(file);
    // Deliberate: the handle is closed without a release, which ends the ownership when no writer waits.
    CloseHandle(mutex);
}

}  // namespace orvex
