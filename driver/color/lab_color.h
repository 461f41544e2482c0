// Conversions between the colors of pixels and CIELAB, on the scale of the color adjustment: components run
// from 0 to 256 and are never divided by 255, so lightness exceeds 9,300 and a and b reach several thousand.
#pragma once

namespace orvex {

struct RgbColor {
    double r, g, b;
};

struct LabColor {
    double lightness, a, b;
};

struct XyzColor {
    double x, y, z;
};

LabColor RgbToLab(double r, double g, double b);

XyzColor LabToXyz(const LabColor& lab);

// Returns the color of three XYZ values. Deliberate: a color out of the reach of red, green and blue is
// lifted until no component is below 0, not clipped. There is no upper bound.
RgbColor LabToRgb(double x, double y, double z);

}  // namespace orvex
