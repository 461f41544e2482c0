// The diagnostic log: a text file in c:\temp that every process with the driver loaded appends to, one line
// at a time, under one named mutex. A log past 100 MiB becomes backup 1, and older backups move up to 9.
//
// Logging is off unless the control file beside the log contains a mask as a decimal number.
#pragma once

#include <atomic>
#include <cstdint>

#include "driver/support/log_format.h"

namespace orvex {

enum class LogLevel : uint32_t { kError = 0, kInfo = 1, kTrace = 2 };

constexpr uint32_t kLogMaskErrors = 1;  // lines of the levels Error and Info
constexpr uint32_t kLogMaskTrace = 2;   // lines of the level Trace

// The lines that are wanted. Call sites test it before they call the writer; the writer does not look at it.
inline std::atomic<uint32_t> logMask = 0;

// Sets logMask to the low 32 bits of the decimal integer in the control file; to 0 without one.
void LoadLogMask();

// Appends one line to the log. Any failure loses the line silently. A level beyond Trace writes no tag.
void WriteLogLine(LogLevel level, const char* format, const LogArgument* arguments, size_t count);

template <typename... Arguments>
void LogWrite(LogLevel level, const char* format, const Arguments&... arguments) {
    const LogArgument list[sizeof...(arguments) + 1] = {LogArgument(arguments)...};
    WriteLogLine(level, format, list, sizeof...(arguments));
}

// Write a line that the mask asks for.
template <typename... Arguments>
void LogError(const char* format, const Arguments&... arguments) {
    if (logMask & kLogMaskErrors) [[unlikely]]
        LogWrite(LogLevel::kError, format, arguments...);
}
template <typename... Arguments>
void LogInfo(const char* format, const Arguments&... arguments) {
    if (logMask & kLogMaskErrors) [[unlikely]]
        LogWrite(LogLevel::kInfo, format, arguments...);
}
template <typename... Arguments>
void LogTrace(const char* format, const Arguments&... arguments) {
    if (logMask & kLogMaskTrace) [[unlikely]]
        LogWrite(LogLevel::kTrace, format, arguments...);
}

// Traces an operation: "<name>" when it begins, its result, and "</name>" when it ends.
class TraceScope {
  public:
    explicit TraceScope(const char* name) : name_(name) { LogTrace("<%s>", name_); }
    ~TraceScope() { LogTrace("</%s>", name_); }
    TraceScope(const TraceScope&) = delete;
    TraceScope& operator=(const TraceScope&) = delete;

    // Trace the result and return it, so that a function can end with `return trace.Bool(...)`.
    BOOL Bool(BOOL result) const {
        LogTrace("Return: %s", result ? "TRUE" : "FALSE");
        return result;
    }
    template <typename T>
    T* Pointer(T* result) const {
        LogTrace("Return: %p", static_cast<const void*>(result));
        return result;
    }
    int Count(int result) const {
        LogTrace("Return: %ld", result);
        return result;
    }
    DWORD Code(DWORD result) const {
        LogTrace("Return: 0x%x", result);
        return result;
    }

  private:
    const char* name_;
};

}  // namespace orvex
