#include "driver/support/log.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "driver/support/handle.h"
#include "driver/support/last_error.h"
#include "driver/support/module.h"
#include "platform/shell.h"

namespace orvex {

std::atomic<uint32_t> logMask = 0;

namespace {

constexpr char kLogFolder[] = "c:\\temp";
constexpr size_t kMaxModulePath = 260;
constexpr size_t kMaxMutexName = 260;
constexpr DWORD kMutexWaitMs = 100;
constexpr LONGLONG kMaxLogBytes = 0x6400000;
constexpr size_t kExtensionLetters = 3;

// The two paths are worked out on first use and kept for the life of the process. Threads that come at once
// may all work one out; the first keeps its own.
using KeptPath = std::atomic<char*>;

const char* Keep(KeptPath& kept, HeapArray<char> path) {
    char* earlier = nullptr;
    return kept.compare_exchange_strong(earlier, path.get()) ? path.release() : earlier;
}

const char* LogPath() {
    static KeptPath kept;
    const char* path = kept;
    return path != nullptr ? path : Keep(kept, GetLogPath());
}

const char* ControlFilePath() {
    static KeptPath kept;
    if (const char* path = kept) return path;
    HeapArray<char> path = GetLogPath();
    if (path) memcpy(path.get() + strlen(path.get()) - kExtensionLetters, "dat", kExtensionLetters);
    return Keep(kept, std::move(path));
}

// Returns the low 32 bits of the decimal integer in the control file, 0 without one. An integer past 64 bits,
// of either sign, sets every bit.
uint32_t ReadLogMask() {
    const char* path = ControlFilePath();
    if (path == nullptr) return 0;
    OwnedHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return 0;
    char text[64] = {};
    DWORD length = 0;
    if (!ReadFile(file.Get(), text, sizeof text - 1, &length, nullptr)) return 0;
    // The Windows runtime's sscanf allocates, and writes through a null pointer when it is out of memory; its
    // strtol stops at 31 bits.
    return static_cast<uint32_t>(strtoull(text, nullptr, 10));
}

// Opens the log for appending, at its end. A link planted in its place is opened itself, not followed.
HANDLE OpenForAppending(const char* path) {
    return CreateFileA(path, FILE_APPEND_DATA | SYNCHRONIZE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

// Gathers one line in a small buffer and appends it to the log.
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
        DWORD written = 0;
        WriteFile(file_, buffer_, static_cast<DWORD>(used_), &written, nullptr);
        used_ = 0;
    }

  private:
    HANDLE file_;
    size_t used_ = 0;
    char buffer_[1024];
};

std::string_view LevelTag(LogLevel level) {
    switch (level) {
        case LogLevel::kError:
            return "[Error] ";
        case LogLevel::kInfo:
            return "[Info]  ";
        case LogLevel::kTrace:
            return "[Trace] ";
    }
    return "";
}

// "<log path without its extension>.1.txt", or null.
HeapArray<char> FirstBackupPath(const char* path) {
    const std::string_view stem(path, static_cast<size_t>(strrchr(path, '.') - path));
    constexpr char kSuffix[] = ".1.txt";
    HeapArray<char> backup = AllocateArray<char>(stem.size() + sizeof kSuffix);
    if (backup) {
        memcpy(backup.get(), stem.data(), stem.size());
        memcpy(backup.get() + stem.size(), kSuffix, sizeof kSuffix);
    }
    return backup;
}

// Moves a log that has grown too long out of the way. A failed rename leaves it where it is.
void MoveLogToBackup(const char* path) {
    const HeapArray<char> backup = FirstBackupPath(path);
    if (!backup) return;
    if (PathFileExistsA(backup.get())) RotateLogFile(backup.get());
    MoveFileA(path, backup.get());
}

void WriteLine(HANDLE file, const SYSTEMTIME& time, LogLevel level, const char* format,
               const LogArgument* arguments, size_t count) {
    LineWriter line(file);
    const LogArgument stamp[] = {time.wYear,   time.wMonth,  time.wDay,          time.wHour,
                                 time.wMinute, time.wSecond, time.wMilliseconds, GetCurrentThreadId()};
    FormatLogText(line, "[%d-%02d-%02d %02d:%02d:%02d.%03d] [TID: %d] ", stamp, std::size(stamp));
    line.Append(LevelTag(level));
    FormatLogText(line, format, arguments, count);
    line.Append("\n");
    line.Flush();
}

}  // namespace

// The old mask stays in force until the new one is known, so that other threads' lines go on meanwhile.
void LoadLogMask() {
    logMask = ReadLogMask();
}

HeapArray<char> GetLogPath() {
    char module[kMaxModulePath] = {};
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetModuleFileNameA(g_hModule, module, sizeof module);
    if (GetLastError() != ERROR_SUCCESS || length <= kExtensionLetters || length >= sizeof module)
        return nullptr;
    memcpy(module + length - kExtensionLetters, "txt", kExtensionLetters);
    const char* name = strrchr(module, '\\');
    if (name == nullptr) return nullptr;
    const size_t size = strlen(kLogFolder) + strlen(name) + 1;
    HeapArray<char> path = AllocateArray<char>(size);
    if (path) snprintf(path.get(), size, "%s%s", kLogFolder, name);
    return path;
}

void RotateLogFile(const char* name) {
    const size_t length = strlen(name);
    const char* extension = strrchr(name, '.');
    if (extension == nullptr || extension == name) return;
    const size_t digit = static_cast<size_t>(extension - name) - 1;
    if (name[digit] == '9') {
        DeleteFileA(name);
        return;
    }
    HeapArray<char> next = AllocateArray<char>(length + 1);
    if (!next) return;
    memcpy(next.get(), name, length + 1);
    ++next[digit];
    if (PathFileExistsA(next.get())) RotateLogFile(next.get());
    MoveFileA(name, next.get());
}

void WriteLogLine(LogLevel level, const char* format, const LogArgument* arguments, size_t count) {
    SYSTEMTIME time;
    GetSystemTime(&time);
    const LastErrorKept lastError;  // callers of the driver read the one that a hook leaves
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
    // Deliberate: the handle is closed without a release, which ends the ownership when no other writer
    // waits.
    CloseHandle(mutex);
}

}  // namespace orvex
