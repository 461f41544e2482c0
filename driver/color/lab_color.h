// Between the colours of pixels and CIELAB, on the scale of the colour adjustment: components run from 0 to
// 256 and are never divided by 255, so that lightness runs to more than 9,300 and a and b to several
// thousand.
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

// The XYZ colour of a CIELAB one.
XyzColor LabToXyz(const LabColor& lab);

// The colour of three XYZ values. One beyond the reach of red, green and blue is lifted until no component is
// below 0, not clipped; there is no upper bound.
RgbColor LabToRgb(double x, double y, double z);

}  // namespace orvex
