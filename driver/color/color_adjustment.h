// The user's colour adjustment: tone, brightness, saturation and the weight of each ink.
#pragma once

#include <cstdint>

namespace orvex {

// The seven values in the order that AdjustColors takes them.
enum AdjustmentValue { kBrightness, kSaturation, kTone, kCyan, kMagenta, kYellow, kBlack, kAdjustmentValues };

// Reshapes the 17-point grid of the colour cache by `values`, -100 to 100 each, clears every other entry and
// makes the cache one of kind 5. Runs after the profile has been loaded, when a value is not 0. How strongly
// each value acts is set in the section "[Color]" of settings.inf.
void AdjustColors(const int32_t (&values)[kAdjustmentValues]);

}  // namespace orvex
