#include "driver/color/color_adjustment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <limits>
#include <memory>
#include <vector>

#include "tests/driver/color/cache_filling.h"
#include "tests/plain/long_hand_adjustment.h"
#include "tests/plain/plain_colors.h"

namespace orvex {

namespace {

using Values = plain::Adjustment;

std::vector<uint32_t> GridOfCache() {
    std::vector<uint32_t> grid;
    for (int i = 0; i <= 16; ++i) {
        for (int j = 0; j <= 16; ++j) {
            for (int k = 0; k <= 16; ++k)
                grid.push_back(g_colorCache[ColorIndex(GridValue(i), GridValue(j), GridValue(k))]);
        }
    }
    return grid;
}

uint32_t SmoothInk(uint32_t color) {
    return plain::Ink(0, 255 - plain::Red(color), 255 - plain::Green(color), 255 - plain::Blue(color));
}

uint32_t ScrambledInk(uint32_t color) {
    return color == 0xFFFFFF ? 0 : plain::Scramble(color, 44);
}

void Adjust(const Values& v, const AdjustmentScales& scales = {}) {
    AdjustColors({v.brightness, v.saturation, v.tone, v.cyan, v.magenta, v.yellow, v.black}, scales);
}

// Adjusts a cache with this grid and compares all of its grid points with the plain definition.
template <typename InkOf>
void ExpectPlain(InkOf inkOf, const Values& values, const AdjustmentScales& scales = {}) {
    FillGridPoints(inkOf);
    const std::vector<uint32_t> want = plain::AdjustedGrid(GridOfCache(), values, scales);
    Adjust(values, scales);
    EXPECT_EQ(g_cacheKind, 5);
    const std::vector<uint32_t> have = GridOfCache();
    ASSERT_EQ(have.size(), want.size());
    for (size_t i = 0; i < have.size(); ++i) {
        ASSERT_EQ(have[i], want[i]) << "point " << i << " brightness " << values.brightness << " saturation "
                                    << values.saturation << " tone " << values.tone << " cyan " << values.cyan
                                    << " magenta " << values.magenta << " yellow " << values.yellow
                                    << " black " << values.black;
    }
}

constexpr int Values::*kEach[] = {&Values::brightness, &Values::saturation, &Values::tone, &Values::cyan,
                                  &Values::magenta,    &Values::yellow,     &Values::black};

}  // namespace

TEST(ColorAdjustment, EqualsThePlainDefinitionForEachValueAlone) {
    for (const auto value : kEach) {
        for (const int amount : {-128, -100, -1, 37, 127}) {
            Values values;
            values.*value = amount;
            ExpectPlain(ScrambledInk, values);
        }
    }
}

TEST(ColorAdjustment, EqualsThePlainDefinitionForAllValuesTogether) {
    ExpectPlain(SmoothInk, {100, 100, 100, 100, 100, 100, 100});
    ExpectPlain(SmoothInk, {-100, -100, -100, -100, -100, -100, -100});
    ExpectPlain(ScrambledInk, {100, -100, 100, -100, 100, -100, 100});
    ExpectPlain(ScrambledInk, {-100, 100, -100, 100, -100, 100, -100});
    ExpectPlain(ScrambledInk, {3, -5, 7, -11, 13, -17, 19});
    ExpectPlain(ScrambledInk, {-40, 25, 10, 5, -5, 30, -20});
    ExpectPlain(ScrambledInk, {0, 0, 0, 0, 0, 0, 0});
}

TEST(ColorAdjustment, EqualsThePlainDefinitionForPairsOfValues) {
    for (size_t one = 0; one < std::size(kEach); ++one) {
        for (size_t other = 0; other < one; ++other) {
            Values values;
            values.*kEach[one] = 60;
            values.*kEach[other] = -45;
            ExpectPlain(SmoothInk, values);
        }
    }
}

TEST(ColorAdjustment, EqualsThePlainDefinitionForOtherScales) {
    ExpectPlain(ScrambledInk, {10, 20, 30, 40, 50, 60, 70}, {50, 80, 120, 300, 10, 20, 30.5});
    ExpectPlain(ScrambledInk, {10, 20, 30, 40, 50, 60, 70}, {.cyan = 7});
}

TEST(ColorAdjustment, IsBoundedWhateverTheScalesAre) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double scale : {0.0, 1e308, -1e308, 1e-300, double{NAN}, kInfinity, -kInfinity, -100.0}) {
        const AdjustmentScales scales{scale, scale, scale, scale, scale, scale, scale};
        for (const int value : {0, 1, -1, 100}) {
            ExpectPlain(ScrambledInk, {value, value, value, value, value, value, value}, scales);
        }
        ExpectPlain(ScrambledInk, {-100, 0, -100, 0, -100, 0, -100}, scales);
    }
}

TEST(ColorAdjustment, LeavesOnlyTheGridWhateverFilledTheCache) {
    for (const int32_t kind : {1, 2, 3, 4}) {
        FillCache(
            kind, kind == 4 ? kNotComputed : 0,
            [&](uint32_t color) { return kind < 3 || plain::IsAllEven(color); }, ScrambledInk);
        const std::vector<uint32_t> want =
            plain::AdjustedGrid(GridOfCache(), {.saturation = 40, .cyan = -30}, {});
        Adjust({.saturation = 40, .cyan = -30});
        EXPECT_EQ(g_cacheKind, 5);
        EXPECT_TRUE(SameForEveryColor(StoredEntry, [&](uint32_t color) {
            if (!plain::IsGridPoint(color)) return kNotComputed;
            const auto step = [](uint32_t component) { return (component + 1) / 16; };
            return want[step(plain::Red(color)) * 289 + step(plain::Green(color)) * 17 +
                        step(plain::Blue(color))];
        })) << kind;
    }
}

TEST(ColorAdjustment, TakesSentinelsOfTheGridAsTheyAre) {
    // A profile of version 4 leaves the grid points at 255 to be computed later.
    FillCache(4, kNotComputed, plain::IsAllEven, SmoothInk);
    const std::vector<uint32_t> grid = GridOfCache();
    EXPECT_EQ(grid[16], kNotComputed);
    const std::vector<uint32_t> want = plain::AdjustedGrid(grid, {.brightness = 30}, {});
    Adjust({.brightness = 30});
    EXPECT_EQ(GridOfCache(), want);
    EXPECT_EQ(g_colorCache[0xFFFFFF], kNotComputed);
}

TEST(ColorAdjustment, KeepsTheProfilesWhite) {
    for (const uint32_t white : {0u, 0x01020304u}) {
        FillGrid([&](uint32_t color) { return color == 0xFFFFFF ? white : 0x80808080u; });
        Adjust({.tone = 80, .black = 100});
        EXPECT_EQ(g_colorCache[0xFFFFFF], white);
    }
}

TEST(ColorAdjustment, ByBlackAloneLowersTheLightness) {
    FillGrid([](uint32_t color) {
        return plain::Ink(255 - std::max({plain::Red(color), plain::Green(color), plain::Blue(color)}), 0, 0,
                          0);
    });
    Adjust({.black = 20});
    uint32_t darker = 0;
    for (int step = 1; step < 16; ++step) {
        const uint32_t gray = ColorIndex(GridValue(step), GridValue(step), GridValue(step));
        EXPECT_GE(g_colorCache[gray], 255 - GridValue(step));
        darker += g_colorCache[gray] > 255 - GridValue(step);
    }
    EXPECT_GT(darker, 10u);
}

TEST(GridLookup, EqualsTheInterpolationInDoublePrecision) {
    // Two inks are random, and two either absent or full.
    std::vector<uint32_t> points;
    for (uint32_t i = 0; i < kGridPoints; ++i) {
        const uint32_t random = plain::Scramble(i), which = plain::Scramble(i, 1);
        points.push_back((random & 0xFFFF) | (which & 1) * 0xFF0000u | (which >> 1 & 1) * 0xFF000000u);
    }
    InkGrid grid;
    std::copy(points.begin(), points.end(), grid.inks);
    for (int red = 0; red < 256; red += red < 238 ? 17 : 1) {
        for (int green = 0; green < 256; green += green < 238 ? 14 : 1) {
            for (int blue = 0; blue < 256; ++blue) {
                ASSERT_EQ(GridLookup(grid, blue, green, red, blue % 2 == 0),
                          plain::InterpolatedInk(points, blue, green, red))
                    << red << ' ' << green << ' ' << blue;
            }
        }
    }
}

TEST(GridLookup, ReachesTheLastPointAt255Only) {
    InkGrid grid{};
    grid.inks[GridIndex(16, 16, 16)] = 0xFFFFFFFF;
    EXPECT_EQ(GridLookup(grid, 255, 255, 255, false), 0xFFFFFFFFu);
    EXPECT_EQ(GridLookup(grid, 254, 255, 255, false), 0xDFDFDFDFu);  // 14/16 of 255
    EXPECT_EQ(GridLookup(grid, 240, 255, 255, false), 0u);
}

TEST(GridLookup, StaysInsideTheGrid) {
    const auto grid = std::make_unique<InkGrid>();
    for (uint32_t i = 0; i < kGridPoints; ++i) grid->inks[i] = plain::Scramble(i);
    for (const int below : {-1, -15, -16, -17, -300, INT32_MIN}) {
        EXPECT_EQ(GridLookup(*grid, below, below, below, false), grid->inks[0]);
        EXPECT_EQ(GridLookup(*grid, below, 255, 16, false), grid->inks[GridIndex(1, 16, 0)]);
    }
    for (const int above : {256, 271, 272, 4000, INT32_MAX}) {
        EXPECT_EQ(GridLookup(*grid, above, above, above, false), grid->inks[kGridPoints - 1]);
    }
}

namespace {

// Fine enough for some steps to lie within a hundredth of the end of each curve's straight part.
constexpr double kStep = 1.0 / 65536;
constexpr double kTolerance = 1e-9;

// Returns the light of a component; Encoded() is the inverse.
double Decoded(double v) {
    return v < 0.0404482362771 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double Encoded(double light) {
    return light < 0.0404482362771 / 12.92 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

// Returns the lightness of a luminance, straight up to 8; Luminance() is the inverse.
double Lightness(double luminance) {
    const double straight = luminance * 24389 / 27;
    return straight < 8 ? straight : 116 * std::cbrt(luminance) - 16;
}

double Luminance(double lightness) {
    return lightness < 8 ? lightness * 27 / 24389 : std::pow((lightness + 16) / 116, 3);
}

}  // namespace

TEST(LabColor, ReachesThousandsSinceComponentsAreNotDividedBy255) {
    const LabColor white = RgbToLab(256, 256, 256);
    EXPECT_NEAR(white.lightness, 9371, 1);
    EXPECT_NEAR(white.a, 0, 2);
    EXPECT_NEAR(white.b, 0, 2);
    EXPECT_NEAR(RgbToLab(255, 255, 255).lightness, 9341, 1);
    EXPECT_NEAR(RgbToLab(0, 0, 0).lightness, 0, 1e-9);
    EXPECT_LT(RgbToLab(0, 256, 0).a, -6500);
    EXPECT_GT(RgbToLab(256, 0, 256).a, 7900);
    EXPECT_LT(RgbToLab(0, 0, 256).b, -8700);
    EXPECT_GT(RgbToLab(256, 256, 0).b, 7600);
}

TEST(LabColor, FollowsTheLightnessOfGrays) {
    constexpr double kLuminanceOfWhite = 0.21258623078559555 + 0.7151703037034108 + 0.07220049864333623;
    for (double gray = 0; gray <= 1; gray += kStep) {
        ASSERT_NEAR(RgbToLab(gray, gray, gray).lightness, Lightness(Decoded(gray) * kLuminanceOfWhite),
                    kTolerance)
            << gray;
    }
}

TEST(LabColor, ConvertsEveryLightnessToItsLuminance) {
    for (double lightness = 0; lightness <= 16; lightness += 16 * kStep) {
        const XyzColor xyz = LabToXyz({lightness, 0, 0});
        const double luminance = Luminance(lightness);
        ASSERT_NEAR(xyz.x, luminance * 0.950456, kTolerance) << lightness;
        ASSERT_NEAR(xyz.y, luminance, kTolerance) << lightness;
        ASSERT_NEAR(xyz.z, luminance * 1.088754, kTolerance) << lightness;
    }
}

TEST(LabColor, LiftsAColorOutOfReachUntilItsSmallestComponentIsZero) {
    for (double y = 0; y <= 1; y += kStep) {
        const RgbColor rgb = LabToRgb(0, y, 0);
        ASSERT_NEAR(rgb.r, 0, kTolerance) << y;
        ASSERT_NEAR(rgb.g, Encoded((1.8758 + 1.5372) * y), kTolerance) << y;
        ASSERT_NEAR(rgb.b, Encoded((1.5372 - 0.204) * y), kTolerance) << y;
    }
    const RgbColor rgb = LabToRgb(1, 0, 0);  // green is the smallest
    EXPECT_NEAR(rgb.r, Encoded(3.2406 + 0.9689), kTolerance);
    EXPECT_EQ(rgb.g, 0);
    EXPECT_NEAR(rgb.b, Encoded(0.0557 + 0.9689), kTolerance);
}

TEST(LabColor, DoesNotLiftAColorWithinReach) {
    const RgbColor rgb = LabToRgb(0.5, 0.5, 0.5);
    EXPECT_NEAR(rgb.r, Encoded((3.2406 - 1.5372 - 0.4986) / 2), kTolerance);
    EXPECT_NEAR(rgb.g, Encoded((-0.9689 + 1.8758 + 0.0415) / 2), kTolerance);
    EXPECT_NEAR(rgb.b, Encoded((0.0557 - 0.204 + 1.057) / 2), kTolerance);
}

TEST(LabColor, ConvertsAColorThereAndBack) {
    for (const double r : {0.0, 1.0, 80.0, 256.0}) {
        for (const double g : {0.0, 30.0, 200.0}) {
            const XyzColor xyz = LabToXyz(RgbToLab(r, g, 128));
            const RgbColor back = LabToRgb(xyz.x, xyz.y, xyz.z);
            EXPECT_NEAR(back.g, g, 0.5);
        }
    }
}

}  // namespace orvex
