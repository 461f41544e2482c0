// The ink value of a pixel: the unit of color tables, raster rows, profiles and previews.
#pragma once

#include <array>
#include <cstdint>

namespace orvex {

// The four ink amounts of a pixel in one number; 0 is no ink at all.
using InkValue = uint32_t;

// One ink. Its number is the place of its byte in an ink value, from the lowest up.
enum Ink { kBlackInk, kCyanInk, kMagentaInk, kYellowInk };
constexpr int kInks = 4;
constexpr std::array<char, kInks> kInkLetters = {'K', 'C', 'M', 'Y'};

// Returns the amount of one ink, 0 (none) to 255.
constexpr uint32_t InkAmount(InkValue inks, int ink) {
    return inks >> (8 * ink) & 0xFF;
}

constexpr InkValue PackInks(uint32_t k, uint32_t c, uint32_t m, uint32_t y) {
    return k | c << 8 | m << 16 | y << 24;
}

}  // namespace orvex
