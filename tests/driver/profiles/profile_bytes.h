// Color profiles built byte by byte, so that a test reads like the format.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "driver/color/color_cache.h"
#include "tests/plain/plain_colors.h"

namespace orvex {

inline std::string Number16(uint32_t value) {
    return {static_cast<char>(value), static_cast<char>(value >> 8)};
}

inline std::string Number32(uint32_t value) {
    return Number16(value & 0xFFFF) + Number16(value >> 16);
}

inline std::string Tag(char id, std::string_view data) {
    return std::string(1, id).append(Number16(static_cast<uint32_t>(data.size()))).append(data);
}
inline std::string NameTag(std::string_view name) {
    return Tag(1, name);
}
inline std::string ResolutionTag(char other, char at600Dpi) {
    return Tag(2, std::string{other, at600Dpi});
}

// Returns the tag area of these tags, or one that states another length.
inline std::string TagArea(std::string_view tags, uint32_t length) {
    return std::string(1, '\x7F').append(Number16(length)).append(tags);
}
inline std::string TagArea(std::string_view tags) {
    return TagArea(tags, static_cast<uint32_t>(tags.size() + 3));
}

// Returns the fixed header of a file of `size` bytes.
inline std::string ProfileHead(int version, uint64_t size) {
    return "ZVC" + std::string(1, static_cast<char>(version)) + Number32(static_cast<uint32_t>(size)) +
           "????";
}

// Returns a profile with these parts, whose header states its size.
inline std::string ProfileBytes(int version, std::string_view tagArea, std::string_view colors) {
    return ProfileHead(version, 12 + tagArea.size() + colors.size()) + std::string(tagArea) +
           std::string(colors);
}

// Returns the size of both variants of a version's colors.
constexpr uint64_t ColorsSize(int version) {
    return version < 3 ? 134217728 : version < 5 ? 16777216 : 39304;
}

// Returns the ink value that the tests' profiles have for a color; it differs between the variants.
constexpr uint32_t ProfileInk(uint32_t color, bool at600Dpi) {
    return plain::Scramble(color, at600Dpi ? 600 : 300);
}

// Returns the colors of version 5 in both variants: blue slowest, red fastest.
template <typename InkOf>
std::string GridColors(InkOf inkOf) {
    std::string bytes;
    for (const bool at600Dpi : {true, false}) {
        for (int blue = 0; blue < kGridSteps; ++blue) {
            for (int green = 0; green < kGridSteps; ++green) {
                for (int red = 0; red < kGridSteps; ++red) {
                    bytes += Number32(
                        inkOf(ColorIndex(GridValue(red), GridValue(green), GridValue(blue)), at600Dpi));
                }
            }
        }
    }
    return bytes;
}

}  // namespace orvex
