// The user's color adjustment: tone, brightness, saturation and the weight of each ink.
#pragma once

#include <cstdint>

namespace orvex {

// The seven values, -100 to 100 each, in the order that AdjustColors takes them.
enum AdjustmentValue { kBrightness, kSaturation, kTone, kCyan, kMagenta, kYellow, kBlack, kAdjustmentValues };

// How strongly each value acts. Deliberate: the first four divide their values, the three colors multiply
// theirs.
struct AdjustmentScales {
    double tone = 100, saturation = 100, brightness = 100, black = 200;
    double yellow = 100, cyan = 100, magenta = 100;
};

// How far every color moves in CIELAB.
struct ColorMovement {
    double tone, brightness, saturation, cyan, black, yellow, magenta;
};

ColorMovement MovementOf(const int32_t (&values)[kAdjustmentValues], const AdjustmentScales& scales);

// Reshapes the 17-point grid of the color cache, clears every other entry and makes the cache one of kGrid.
// Runs after the profile has been loaded, when a value is not 0.
void AdjustColors(const int32_t (&values)[kAdjustmentValues], const AdjustmentScales& scales);

}  // namespace orvex
