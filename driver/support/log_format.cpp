#include "driver/support/log_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace orvex {

namespace {

// One conversion of a format: "%", flags, width, precision, length modifier, conversion character.
struct Conversion {
    bool leftAligned = false;
    char flags[6] = {};  // as snprintf takes them
    int width = {};
    int precision = -1;
    bool wide = false;  // the integer is 64 bits wide
    char type = {};
};

constexpr int kMaxField = 512;  // more characters than any message of the driver asks for

// Reads digits and moves the cursor past them.
int ReadNumber(const char*& cursor) {
    int value = 0;
    for (; *cursor >= '0' && *cursor <= '9'; ++cursor)
        value = std::min(value * 10 + (*cursor - '0'), kMaxField);
    return value;
}

// Reads the conversion after a "%" and moves the cursor past it; its type is 0 at the format's end.
Conversion ReadConversion(const char*& cursor) {
    Conversion conversion;
    for (size_t flags = 0; *cursor != '\0' && strchr("-+ #0", *cursor) != nullptr; ++cursor) {
        if (*cursor == '-') conversion.leftAligned = true;
        if (flags + 1 < sizeof conversion.flags) conversion.flags[flags++] = *cursor;
    }
    conversion.width = ReadNumber(cursor);
    if (*cursor == '.') {
        ++cursor;
        conversion.precision = ReadNumber(cursor);
    }
    if (strncmp(cursor, "I64", 3) == 0) {
        conversion.wide = true;
        cursor += 3;
    }
    for (; *cursor != '\0' && strchr("hlzjt", *cursor) != nullptr; ++cursor) {
        if (*cursor == 'z' || strncmp(cursor, "ll", 2) == 0) conversion.wide = true;
    }
    conversion.type = *cursor;
    if (*cursor != '\0') ++cursor;
    return conversion;
}

void AppendBlanks(TextSink& sink, size_t count) {
    for (; count > 0; --count) sink.Append(" ");
}

void AppendCharacters(TextSink& sink, std::string_view text) {
    sink.Append(text);
}

// Writes wide text as UTF-8 in pieces. A lone surrogate becomes the replacement character.
void AppendCharacters(TextSink& sink, WideView text) {
    while (!text.empty()) {
        size_t units = std::min<size_t>(text.size(), 64);
        if (units < text.size() && IS_HIGH_SURROGATE(text[units - 1])) --units;
        char piece[64 * 3];
        const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(units), piece,
                                              static_cast<int>(sizeof piece), nullptr, nullptr);
        sink.Append({piece, static_cast<size_t>(bytes)});
        text.remove_prefix(units);
    }
}

// Writes a narrow or wide text in its field.
template <typename View>
void AppendText(TextSink& sink, const Conversion& conversion, View text) {
    if (conversion.precision >= 0) text = text.substr(0, static_cast<size_t>(conversion.precision));
    const size_t width = static_cast<size_t>(conversion.width);
    const size_t blanks = width > text.size() ? width - text.size() : 0;
    if (!conversion.leftAligned) AppendBlanks(sink, blanks);
    AppendCharacters(sink, text);
    if (conversion.leftAligned) AppendBlanks(sink, blanks);
}

// Writes one number with snprintf; `length` is its length modifier. A precision below 0 is none.
template <typename T>
void AppendNumber(TextSink& sink, const Conversion& conversion, const char* length, T value) {
    char format[7 + sizeof conversion.flags];  // the flags within "%*.*lld"
    char piece[2 * kMaxField];
    snprintf(format, sizeof format, "%%%s*.*%s%c", conversion.flags, length, conversion.type);
    snprintf(piece, sizeof piece, format, conversion.width, conversion.precision, value);
    sink.Append(piece);
}

void AppendInteger(TextSink& sink, const Conversion& conversion, int64_t value) {
    const bool isSigned = conversion.type == 'd' || conversion.type == 'i';
    if (!conversion.wide) {
        value = isSigned ? int64_t{static_cast<int32_t>(value)} : int64_t{static_cast<uint32_t>(value)};
    }
    if (isSigned) {
        AppendNumber(sink, conversion, "ll", static_cast<long long>(value));
    } else {
        AppendNumber(sink, conversion, "ll", static_cast<unsigned long long>(value));
    }
}

void AppendArgument(TextSink& sink, const Conversion& conversion, const LogArgument& argument) {
    using Kind = LogArgument::Kind;
    const auto is = [&](const char* types, Kind kind) {
        return strchr(types, conversion.type) != nullptr && argument.kind == kind;
    };
    if (is("diuxXo", Kind::kInteger)) return AppendInteger(sink, conversion, argument.integer);
    if (is("c", Kind::kInteger)) {
        const char character = static_cast<char>(argument.integer);
        return AppendText(sink, conversion, std::string_view(&character, 1));
    }
    if (is("p", Kind::kInteger)) {
        char piece[17];
        snprintf(piece, sizeof piece, "%016llX", static_cast<unsigned long long>(argument.integer));
        return AppendText(sink, conversion, std::string_view(piece));
    }
    if (is("s", Kind::kText)) return AppendText(sink, conversion, argument.text);
    if (is("S", Kind::kWideText)) return AppendText(sink, conversion, argument.wideText);
    if (is("efgEG", Kind::kNumber)) return AppendNumber(sink, conversion, "", argument.number);
    sink.Append("?");
}

}  // namespace

void FormatLogText(TextSink& sink, const char* format, const LogArgument* arguments, size_t count) {
    size_t used = 0;
    for (const char* cursor = format; *cursor != '\0';) {
        const size_t plain = strcspn(cursor, "%");
        sink.Append({cursor, plain});
        cursor += plain;
        if (*cursor == '\0') return;
        ++cursor;
        const Conversion conversion = ReadConversion(cursor);
        if (conversion.type == '%') {
            sink.Append("%");
        } else if (conversion.type != '\0' && used < count) {
            AppendArgument(sink, conversion, arguments[used++]);
        } else {
            sink.Append("?");
        }
    }
}

}  // namespace orvex
