#include "driver/color/lab_color.h"

#include <algorithm>
#include <cmath>

namespace orvex {

namespace {

// The white point.
constexpr double kWhiteX = 0.950456;
constexpr double kWhiteZ = 1.088754;

// The straight part of the lightness curve near black, and its end on either axis.
constexpr double kCurveEnd = 0.008856451679035631;
constexpr double kCurveValueEnd = 0.20689655172413793;
constexpr double kCurveSlope = 7.787037037037037;
constexpr double kCurveInverseSlope = 0.12841854934601665;
constexpr double kCurveOffset = 0.13793103448275862;

double ToLinear(double v) {
    return v <= 0.0404482362771076 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double FromLinear(double v) {
    return v <= 0.0031306684425005883 ? 12.92 * v : 1.055 * std::pow(v, 0.4166666666666667) - 0.055;
}

double Curve(double t) {
    return t >= kCurveEnd ? std::pow(t, 0.333333333333333) : t * kCurveSlope + kCurveOffset;
}

double CurveInverse(double f) {
    return f >= kCurveValueEnd ? f * f * f : (f - kCurveOffset) * kCurveInverseSlope;
}

}  // namespace

LabColor RgbToLab(double r, double g, double b) {
    const double red = ToLinear(r), green = ToLinear(g), blue = ToLinear(b);
    const double x =
        (0.41239558896741424 * red + 0.3575834307637148 * green + 0.18049264738170157 * blue) / kWhiteX;
    const double y = 0.21258623078559555 * red + 0.7151703037034108 * green + 0.07220049864333623 * blue;
    const double z =
        (0.019297215491746945 * red + 0.11918386458084854 * green + 0.9504971251315798 * blue) / kWhiteZ;
    const double fx = Curve(x), fy = Curve(y), fz = Curve(z);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

XyzColor LabToXyz(const LabColor& lab) {
    const double fy = (lab.lightness + 16) / 116;
    const double fx = lab.a / 500 + fy;
    const double fz = fy - lab.b / 200;
    return {CurveInverse(fx) * kWhiteX, CurveInverse(fy), CurveInverse(fz) * kWhiteZ};
}

RgbColor LabToRgb(double x, double y, double z) {
    double red = 3.2406 * x - 1.5372 * y - 0.4986 * z;
    double green = -0.9689 * x + 1.8758 * y + 0.0415 * z;
    double blue = 0.0557 * x - 0.204 * y + 1.057 * z;
    const double smallest = std::min({red, green, blue});
    if (smallest < 0) {
        red -= smallest;
        green -= smallest;
        blue -= smallest;
    }
    return {FromLinear(red), FromLinear(green), FromLinear(blue)};
}

}  // namespace orvex
