// An ink value taken apart, and what the tools count with.
#pragma once

#include <array>
#include <cstdint>

#include "color/color_cache.h"

constexpr int kInks = 4;
constexpr std::array<char, kInks> kInkLetters = {'K', 'C', 'M', 'Y'};  // in the order of an ink value's bytes
enum Ink { kBlackInk, kCyanInk, kMagentaInk, kYellowInk };

constexpr double kFullAmount = 255;  // the amount that percentages count as 100
constexpr uint32_t kWhite = 0xFFFFFF;

constexpr uint32_t InkAmount(uint32_t inks, int ink) {
    return inks >> (8 * ink) & 0xFF;
}

constexpr uint32_t PackInks(uint32_t k, uint32_t c, uint32_t m, uint32_t y) {
    return k | c << 8 | m << 16 | y << 24;
}

// The four amounts together, 0 to 1020.
constexpr uint32_t TotalInk(uint32_t inks) {
    return InkAmount(inks, kBlackInk) + InkAmount(inks, kCyanInk) + InkAmount(inks, kMagentaInk) +
           InkAmount(inks, kYellowInk);
}

constexpr double Percent(double amount) {
    return amount * 100 / kFullAmount;
}

// All four inks full is the driver's mark of an entry that is not computed yet, so that no profile may hold
// it. The nearest value takes its place, with black one step short of full.
constexpr uint32_t AvoidMark(uint32_t inks) {
    return inks == kNotComputed ? PackInks(254, 255, 255, 255) : inks;
}
