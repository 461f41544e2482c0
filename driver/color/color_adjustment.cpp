#include "driver/color/color_adjustment.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "driver/color/color_cache.h"

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

// Place of a component between two grid points. 255 lies on the upper one.
struct GridSpan {
    explicit GridSpan(int component) {
        const int value = std::clamp(component, 0, 255);
        lower = value / 16;
        fraction = value == 255 ? 16 : static_cast<uint32_t>(value % 16);
    }
    int lower;          // 0 to 15; the upper point is the next one
    uint32_t fraction;  // in sixteenths
};

// Returns sixteen times the value between two others.
uint32_t Between(uint32_t lower, uint32_t upper, uint32_t fraction) {
    return lower * (16 - fraction) + upper * fraction;
}

// The bounds of CIELAB on this scale.
constexpr double kLightnessRange = 9340;
constexpr double kMinLightness = 1, kMaxLightness = 9341;
constexpr double kMinA = -6595, kMaxA = 7926;
constexpr double kMinB = -8701, kMaxB = 7621;

// A direction in the plane of CIELAB's a and b, one unit long.
struct Hue {
    Hue(double towardsA, double towardsB)
        : a(towardsA / std::sqrt(towardsA * towardsA + towardsB * towardsB)),
          b(towardsB / std::sqrt(towardsA * towardsA + towardsB * towardsB)) {}
    double a, b;
};

// Returns the nearer bound for a value outside them, and the lower one for NaN, which a scale of 0 can cause.
double Bounded(double value, double lower, double upper) {
    return value > lower ? std::min(value, upper) : lower;
}

// Moves colors in CIELAB.
class Mover {
  public:
    explicit Mover(const ColorMovement& movement)
        : movement_(movement),
          // Darkening acts four times as strongly as lightening.
          exponent_(movement.brightness < 0 ? 1 - 3 * movement.brightness : 1 - 0.75 * movement.brightness) {
        const Hue cyan(-48.1, -14.1), magenta(98.2, -60.8), yellow(-21.6, 94.5);
        inksA_ = cyan.a * movement.cyan + yellow.a * movement.yellow + magenta.a * movement.magenta;
        inksB_ = cyan.b * movement.cyan + yellow.b * movement.yellow + magenta.b * movement.magenta;
    }

    LabColor operator()(const LabColor& lab) const {
        const double bright = std::pow(lab.lightness / kLightnessRange, exponent_) * kLightnessRange;
        const double lightness = (bright - lab.lightness) + lab.lightness - movement_.black;
        const double a = lab.a * movement_.saturation + lab.a + inksA_;
        const double b = lab.b * movement_.saturation + lab.b + movement_.tone + inksB_;
        return {Bounded(lightness, kMinLightness, kMaxLightness), Bounded(a, kMinA, kMaxA),
                Bounded(b, kMinB, kMaxB)};
    }

  private:
    ColorMovement movement_;
    double exponent_;
    double inksA_, inksB_;  // the pull of the three inks
};

// Truncates a component to a whole number, 255 at most.
int Component(double value) {
    return static_cast<int>(std::min(value, 255.0));
}

// The grid point whose look-up has the flag set.
constexpr int kFlaggedStep = 6;
constexpr std::array kFlaggedPoint = {kFlaggedStep, kFlaggedStep, kFlaggedStep};

// Returns the ink value in `grid` of the color that this grid point is moved to.
InkValue MovedInk(const InkGrid& grid, const Mover& move, int red, int green, int blue) {
    // Deliberate: the last step counts as 256 here, not as the 255 of the cache's grid.
    const XyzColor moved = LabToXyz(move(RgbToLab(16 * red, 16 * green, 16 * blue)));
    const RgbColor color = LabToRgb(moved.x, moved.y, moved.z);
    const bool flag = std::array{red, green, blue} == kFlaggedPoint;
    return GridLookup(grid, Component(color.b), Component(color.g), Component(color.r), flag);
}

// Stores the moved inks of `grid` at the grid points of `table`.
void StoreMovedGrid(const InkGrid& grid, const Mover& move, InkValue* table) {
    for (int red = 0; red < kGridSteps; ++red) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int blue = 0; blue < kGridSteps; ++blue) {
                table[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))] =
                    MovedInk(grid, move, red, green, blue);
            }
        }
    }
    // White paper keeps the ink that the profile gives it: none.
    table[ColorIndex(255, 255, 255)] = grid.inks[kGridPoints - 1];
}

// The grid before the adjustment, too large for a thread's stack. One job's colors are adjusted at a time.
InkGrid unadjusted;

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

void CopyGridOut(const InkValue* table, InkGrid* grid) {
    for (int red = 0; red < kGridSteps; ++red) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int blue = 0; blue < kGridSteps; ++blue) {
                grid->inks[GridIndex(red, green, blue)] =
                    table[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))];
            }
        }
    }
}

InkValue GridLookup(const InkGrid& grid, int blue, int green, int red, bool flag) {
    (void)flag;
    const GridSpan b(blue), g(green), r(red);
    const InkValue* corner = grid.inks + GridIndex(r.lower, g.lower, b.lower);
    InkValue inks = 0;
    for (int ink = 0; ink < kInks; ++ink) {
        const auto amountAt = [&](int redStep, int greenStep, int blueStep) {
            return InkAmount(corner[GridIndex(redStep, greenStep, blueStep)], ink);
        };
        const auto alongBlue = [&](int redStep, int greenStep) {
            return Between(amountAt(redStep, greenStep, 0), amountAt(redStep, greenStep, 1), b.fraction);
        };
        const auto alongGreen = [&](int redStep) {
            return Between(alongBlue(redStep, 0), alongBlue(redStep, 1), g.fraction);
        };
        const uint32_t alongRed = Between(alongGreen(0), alongGreen(1), r.fraction);
        inks |= alongRed / (16 * 16 * 16) << 8 * ink;
    }
    return inks;
}

ColorMovement MovementOf(const int32_t (&values)[kAdjustmentValues], const AdjustmentScales& scales) {
    return {.tone = values[kTone] / scales.tone * 7000 * 0.5,
            .brightness = values[kBrightness] / scales.brightness * 0.5,
            .saturation = values[kSaturation] / scales.saturation,
            .cyan = values[kCyan] * scales.cyan * 0.5,
            .black = kMaxLightness / scales.black * 0.5 * values[kBlack],
            .yellow = values[kYellow] * scales.yellow * 0.5,
            .magenta = values[kMagenta] * scales.magenta * 0.5};
}

void AdjustColors(const int32_t (&values)[kAdjustmentValues], const AdjustmentScales& scales) {
    CopyGridOut(g_colorCache, &unadjusted);
    static_assert(kNotComputed == 0xFFFFFFFF);
    memset(g_colorCache, 0xFF, sizeof g_colorCache);
    StoreMovedGrid(unadjusted, Mover(MovementOf(values, scales)), g_colorCache);
    SetCacheKind(kGrid);
}

}  // namespace orvex
