// An ink value taken apart: one 32-bit value a pixel, the unit of raster rows, profiles and previews.
#pragma once

#include <array>
#include <cstdint>

namespace orvex {

// The inks, in the order of an ink value's bytes from the lowest up.
enum Ink { kBlackInk, kCyanInk, kMagentaInk, kYellowInk };
constexpr int kInks = 4;
constexpr std::array<char, kInks> kInkLetters = {'K', 'C', 'M', 'Y'};

// The amount of one ink, 0 (none) to 255.
constexpr uint32_t InkAmount(uint32_t inks, int ink) {
    return inks >> (8 * ink) & 0xFF;
}

constexpr uint32_t PackInks(uint32_t k, uint32_t c, uint32_t m, uint32_t y) {
    return k | c << 8 | m << 16 | y << 24;
}

}  // namespace orvex
