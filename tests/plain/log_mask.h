// Plain definition of the log's mask: a decimal number in the control file.
#pragma once

#include <cstdint>
#include <string_view>

namespace orvex::plain {

// Returns the mask of a control file, of which 63 bytes are read: the low 32 bits of the number at its
// beginning, after white space, with a sign or without; 0 without a number, and all bits for one past 64
// bits.
inline uint32_t LogMask(std::string_view file) {
    std::string_view text = file.substr(0, 63);
    const size_t start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos) return 0;
    text.remove_prefix(start);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    uint64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') break;
        const auto digit = static_cast<uint64_t>(c - '0');
        if (number > (UINT64_MAX - digit) / 10) return 0xFFFFFFFF;
        number = number * 10 + digit;
    }
    return static_cast<uint32_t>(negative ? 0 - number : number);
}

}  // namespace orvex::plain
