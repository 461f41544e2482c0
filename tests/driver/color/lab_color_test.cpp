#include "driver/color/color_adjustment.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvex {

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
