// printf-style formatting of log messages with arguments that know their own type: a wrong conversion can't
// read past the arguments, and "%ld" and "%S" mean the same in both builds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "driver/support/text.h"

namespace orvex {

struct LogArgument {
    enum class Kind { kInteger, kNumber, kText, kWideText };

    template <typename T>
    requires std::is_integral_v<T> || std::is_enum_v<T> LogArgument(T value)
        : kind(Kind::kInteger), integer(static_cast<int64_t>(value)) {}
    LogArgument(double value) : kind(Kind::kNumber), number(value) {}
    LogArgument(std::string_view value) : kind(Kind::kText), text(value) {}
    LogArgument(const char* value) : LogArgument(std::string_view(value)) {}
    LogArgument(WideView value) : kind(Kind::kWideText), wideText(value) {}
    LogArgument(const WCHAR* value) : LogArgument(WideView(value == nullptr ? L"(null)" : value)) {}
    LogArgument(const void* value)
        : kind(Kind::kInteger), integer(static_cast<int64_t>(reinterpret_cast<uintptr_t>(value))) {}
    LogArgument() : kind(Kind::kInteger) {}

    Kind kind;
    int64_t integer = {};
    double number = {};
    std::string_view text;
    WideView wideText;
};

// The receiver of formatted bytes, which come piece by piece.
class TextSink {
  public:
    virtual void Append(std::string_view piece) = 0;

  protected:
    ~TextSink() = default;
};

// Formats like printf, with the widths of Windows: integers are 32 bits wide unless the conversion says "ll",
// "I64" or "z" or is "%p", which shows 16 hexadecimal digits. "%S" takes wide text and writes UTF-8. A
// missing argument, or one of another kind than its conversion's, shows as "?".
void FormatLogText(TextSink& sink, const char* format, const LogArgument* arguments, size_t count);

}  // namespace orvex
