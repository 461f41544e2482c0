// The built-in conversion from colours to inks, for jobs without a profile: all grey is printed with black
// ink, so no colour gets all three of C, M and Y.
#pragma once

#include <cstdint>

namespace orvex {

// Ink scales, in percent.
constexpr double kFullInk = 100;
constexpr double kHalfInk = 50;

// The ink value of a colour at an ink scale in percent.
uint32_t GenericInkConversion(uint8_t red, uint8_t green, uint8_t blue, double inkScale);

// Fills all 2^24 entries of a colour cache with their generic conversion.
void FillWithGenericConversion(uint32_t* cache, double inkScale);

}  // namespace orvex
