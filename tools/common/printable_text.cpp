#include "tools/common/printable_text.h"

#include <cstdint>
#include <cstdio>

namespace orvex::tools {

namespace {

bool IsContinuation(char byte) {
    return (static_cast<uint8_t>(byte) & 0xC0) == 0x80;
}

// Returns the size of the UTF-8 character at the start of the text; 0 if it is malformed or a control
// character.
size_t CharacterLength(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    if (lead < 0x80) return lead >= 0x20 && lead != 0x7F ? 1 : 0;
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
    if (length == 0 || lead > 0xF4 || text.size() < length) return 0;
    uint32_t character = lead & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if (!IsContinuation(text[i])) return 0;
        character = character << 6 | (static_cast<uint8_t>(text[i]) & 0x3F);
    }
    constexpr uint32_t kSmallest[] = {0, 0, 0xA0, 0x800, 0x10000};  // U+0080 to U+009F are control characters
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    return character >= kSmallest[length] && character <= 0x10FFFF && !surrogate ? length : 0;
}

}  // namespace

std::string PrintableText(std::string_view text, size_t maxBytes) {
    std::string printable;
    for (size_t at = 0; at < text.size();) {
        if (at >= maxBytes) return printable + "...";
        const size_t length = CharacterLength(text.substr(at));
        if (length > 0) {
            printable += text.substr(at, length);
            at += length;
            continue;
        }
        char escape[5];
        snprintf(escape, sizeof escape, "\\x%02X", static_cast<uint8_t>(text[at]));
        printable += escape;
        ++at;
    }
    return printable;
}

}  // namespace orvex::tools
