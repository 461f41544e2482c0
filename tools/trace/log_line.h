// One line of the driver's diagnostic log.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvex::tools::trace {

enum class Level { kError, kInfo, kTrace, kNone };

struct LogLine {
    int64_t time = 0;     // milliseconds since 1970, UTC
    uint32_t thread = 0;  // its identifier
    Level level = Level::kNone;
    std::string_view message;  // part of the parsed text
};

// Parses "[2026-11-22 12:41:15.924] [TID: 284] [Info]  message". Returns nothing for any other text.
std::optional<LogLine> ParseLogLine(std::string_view text);

// Return a time's parts as texts: "2026-11-22" and "12:41:15.924".
std::string DateText(int64_t time);
std::string ClockText(int64_t time);

// Returns why an error that the driver logs is part of a sound job; empty if it is not.
std::string_view HarmlessReason(std::string_view message);

}  // namespace orvex::tools::trace
