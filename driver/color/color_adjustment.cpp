#include "driver/color/color_adjustment.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "driver/color/color_cache.h"
#include "driver/color/ink_grid.h"
#include "driver/color/lab_color.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"

namespace orvex {

namespace {

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

// How far every colour moves.
struct Movement {
    double tone, brightness, saturation, cyan, black, yellow, magenta;
};

double Scale(const char* key, double absent) {
    return LookupNumber("[Color]", key, absent);
}

// Deliberate: tone, saturation, brightness and black are divided by their scales, the three colours
// multiplied.
Movement MovementOf(const int32_t (&values)[kAdjustmentValues]) {
    const double toneScale = Scale("tone_scale=", 100);
    const double saturationScale = Scale("saturation_scale=", 100);
    const double brightnessScale = Scale("brightness_scale=", 100);
    const double blackScale = Scale("black_scale=", 200);
    const double yellowScale = Scale("yellow_scale=", 100);
    const double cyanScale = Scale("cyan_scale=", 100);
    const double magentaScale = Scale("magenta_scale=", 100);
    return {.tone = values[kTone] / toneScale * 7000 * 0.5,
            .brightness = values[kBrightness] / brightnessScale * 0.5,
            .saturation = values[kSaturation] / saturationScale,
            .cyan = values[kCyan] * cyanScale * 0.5,
            .black = kMaxLightness / blackScale * 0.5 * values[kBlack],
            .yellow = values[kYellow] * yellowScale * 0.5,
            .magenta = values[kMagenta] * magentaScale * 0.5};
}

// The nearer bound of what lies outside; the lower one also of what is no number, as a scale of 0 can make
// it.
double Bounded(double value, double lower, double upper) {
    return value > lower ? std::min(value, upper) : lower;
}

// Moves colours in CIELAB.
class Mover {
  public:
    explicit Mover(const Movement& movement)
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
    Movement movement_;
    double exponent_;
    double inksA_, inksB_;  // where the three inks pull
};

// A component as a whole number, 255 at most.
int Component(double value) {
    return static_cast<int>(std::min(value, 255.0));
}

// What `grid` holds for the colour to which that of a grid point moves.
uint32_t MovedInk(const InkGrid& grid, const Mover& move, int red, int green, int blue) {
    // Deliberate: the last step counts as 256 here, not as the 255 of the cache's grid.
    const XyzColor moved = LabToXyz(move(RgbToLab(16 * red, 16 * green, 16 * blue)));
    const RgbColor color = LabToRgb(moved.x, moved.y, moved.z);
    const bool flag = red == 6 && green == 6 && blue == 6;
    return GridLookup(grid, Component(color.b), Component(color.g), Component(color.r), flag);
}

// Stores the moved inks of `grid` at the grid points of `cache`.
void StoreMovedGrid(const InkGrid& grid, const Mover& move, uint32_t* cache) {
    for (int red = 0; red < kGridSteps; ++red) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int blue = 0; blue < kGridSteps; ++blue) {
                cache[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))] =
                    MovedInk(grid, move, red, green, blue);
            }
        }
    }
    // White paper keeps the ink that the profile gives it: none.
    cache[ColorIndex(255, 255, 255)] = grid.inks[kGridPoints - 1];
}

// The grid before the adjustment, too large for a thread's stack. Colors are adjusted at a job's start, of
// which there is one at a time.
InkGrid unadjusted;

}  // namespace

void AdjustColors(const int32_t (&values)[kAdjustmentValues]) {
    CopyGridOut(g_colorCache, &unadjusted);
    const Movement by = MovementOf(values);
    LogError("ca %lf,%lf,%lf,%lf,%lf,%lf,%lf\n", by.tone, by.brightness, by.saturation, by.cyan, by.black,
             by.yellow, by.magenta);
    static_assert(kNotComputed == 0xFFFFFFFF);
    memset(g_colorCache, 0xFF, sizeof g_colorCache);
    StoreMovedGrid(unadjusted, Mover(by), g_colorCache);
    SetCacheKind(kGrid);
}

}  // namespace orvex
