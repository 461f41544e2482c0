// The user's color adjustment: tone, brightness, saturation and the weight of each ink.
#pragma once

#include <cstdint>

#include "driver/color/ink.h"

namespace orvex {

// The seven values, -100 to 100 each, in the order that AdjustColors takes them.
enum AdjustmentValue { kBrightness, kSaturation, kTone, kCyan, kMagenta, kYellow, kBlack, kAdjustmentValues };

// How strongly each value acts. Deliberate: the first four divide their values, the last three multiply.
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

// CIELAB on the scale of the adjustment: the components of a color run from 0 to 256 and are never divided by
// 255, so lightness exceeds 9,300 and a and b reach several thousand.
struct LabColor {
    double lightness, a, b;
};

struct XyzColor {
    double x, y, z;
};

struct RgbColor {
    double r, g, b;
};

LabColor RgbToLab(double r, double g, double b);

XyzColor LabToXyz(const LabColor& lab);

// Returns the color of three XYZ values. Deliberate: a color out of the reach of red, green and blue is
// lifted until no component is below 0, not clipped. There is no upper bound.
RgbColor LabToRgb(double x, double y, double z);

// The grid points of a color table by themselves.
struct InkGrid {
    InkValue inks[kGridPoints];  // by GridIndex
};

// Copies the grid out of a table, with the entries as they are stored.
void CopyGridOut(const InkValue* table, InkGrid* grid);

// Returns the ink value of a color between the grid points, linear along blue, green and red. Components
// outside 0 to 255 count as the nearer of the two. The flag has no effect.
InkValue GridLookup(const InkGrid& grid, int blue, int green, int red, bool flag);

}  // namespace orvex
