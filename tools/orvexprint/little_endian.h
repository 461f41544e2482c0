// Numbers and texts of files whose bytes are least significant first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/common/wide_text.h"

namespace orvex::tools::print {

using ByteSpan = std::span<const uint8_t>;

// Returns whether `size` bytes from the offset on are within `limit`, for numbers of any size.
constexpr bool IsWithin(uint64_t offset, uint64_t size, uint64_t limit) {
    return offset <= limit && size <= limit - offset;
}

// Return the number at the offset, which must be within the bytes.
inline uint16_t Number16(ByteSpan bytes, size_t offset) {
    return static_cast<uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}
inline uint32_t Number32(ByteSpan bytes, size_t offset) {
    return Number16(bytes, offset) | static_cast<uint32_t>(Number16(bytes, offset + 2)) << 16;
}
inline uint64_t Number64(ByteSpan bytes, size_t offset) {
    return Number32(bytes, offset) | static_cast<uint64_t>(Number32(bytes, offset + 4)) << 32;
}

// Returns the UTF-16 text at the offset as UTF-8; nothing unless it ends with a zero within the bytes.
inline std::optional<std::string> TextAt(ByteSpan bytes, uint64_t offset) {
    std::u16string text;
    for (uint64_t at = offset; IsWithin(at, 2, bytes.size()); at += 2) {
        const uint16_t unit = Number16(bytes, static_cast<size_t>(at));
        if (unit == 0) return Utf8(text);
        text += static_cast<char16_t>(unit);
    }
    return std::nullopt;
}

// Bytes of a device mode up to the fields that say how many it has.
constexpr size_t kLeastDeviceMode = 72;

// Returns the size of a stored device mode by its own fields; 0 if the bytes end before them.
inline size_t DeviceModeSize(ByteSpan bytes) {
    constexpr size_t kSizeField = 68, kExtraField = 70;  // dmSize and dmDriverExtra
    if (bytes.size() < kLeastDeviceMode) return 0;
    return size_t{Number16(bytes, kSizeField)} + Number16(bytes, kExtraField);
}

}  // namespace orvex::tools::print
