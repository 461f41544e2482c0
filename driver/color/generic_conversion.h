// The built-in conversion from colors to inks, for jobs without a profile: all gray is printed with black
// ink, so no color gets all three of C, M and Y.
#pragma once

#include <cstdint>

#include "driver/color/ink.h"

namespace orvex {

// Ink scales, in percent.
constexpr double kFullInk = 100;
constexpr double kHalfInk = 50;

// Returns the ink value of a color.
InkValue GenericInkConversion(uint8_t red, uint8_t green, uint8_t blue, double inkScale);

// Fills all 2^24 entries of a color table.
void FillWithGenericConversion(InkValue* table, double inkScale);

}  // namespace orvex
