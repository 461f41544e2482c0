// The ink value of a pixel, and color tables: an ink value for each of the 2^24 colors that a pixel can have,
// with a grid of 17 x 17 x 17 of them.
#pragma once

#include <array>
#include <cstddef>
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

constexpr size_t kCacheEntries = size_t{1} << 24;
constexpr uint32_t kColorBits = 0xFFFFFF;  // the color in a pixel; its top byte is ignored
constexpr InkValue kNotComputed = 0xFFFFFFFF;
constexpr int kGridSteps = 17;                                     // grid values on each axis
constexpr int kGridPoints = kGridSteps * kGridSteps * kGridSteps;  // 4,913

// Returns the place of a color in a table.
constexpr uint32_t ColorIndex(uint32_t red, uint32_t green, uint32_t blue) {
    return red << 16 | green << 8 | blue;
}

// Returns the color component of grid step 0 to 16: 16 times the step, but 255 for the last.
constexpr uint32_t GridValue(int step) {
    return step < kGridSteps - 1 ? 16u * static_cast<uint32_t>(step) : 255u;
}

// Returns the place of a grid point in an array of them: red varies slowest, blue fastest.
constexpr int GridIndex(int redStep, int greenStep, int blueStep) {
    return (redStep * kGridSteps + greenStep) * kGridSteps + blueStep;
}

}  // namespace orvex
