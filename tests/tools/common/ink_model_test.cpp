#include "tools/common/ink_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace orvex::tools {

namespace {

// Plain definition of the model; `full` is the amount of full ink.
struct PlainModel {
    double Share(int amount) const { return std::min(amount / full, 1.0); }

    // Returns one color of the light: 0 = red, 1 = green, 2 = blue.
    double Shown(uint32_t inkValue, int color) const {
        constexpr double kDensity[4][3] = {
            {1.5, 1.5, 1.5}, {1.35, 0.42, 0.18}, {0.16, 1.3, 0.52}, {0.02, 0.1, 1.2}};
        constexpr double kGain[4] = {0.18, 0.2, 0.2, 0.18};
        double density = 0;
        for (int ink = 0; ink < 4; ++ink) {
            const double solid = kDensity[ink][ink == 0 ? 0 : ink - 1];
            const double share = Share(static_cast<uint8_t>(inkValue >> (8 * ink)));
            const double covered = share + 4 * kGain[ink] * share * (1 - share);
            const double reached = -std::log10(1 - covered + covered * std::pow(10, -solid));
            density += reached / solid * kDensity[ink][color];
        }
        const double darkest = std::pow(10, -1.7);
        const double light = std::max((std::pow(10, -density) - darkest) / (1 - darkest), 0.0);
        return 255 * (light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055);
    }

    double full;
};

}  // namespace

TEST(InkModel, ShowsTypicalInksOnWhitePaper) {
    const struct {
        uint32_t dpi;
        uint32_t inkValue;
        Rgb color;
    } shown[] = {
        {300, 0x00000000, {255, 255, 255}},
        {300, 0x000000FF, {28, 28, 28}},
        {300, 0x0000FF00, {44, 163, 211}},
        {300, 0x00FF0000, {216, 49, 146}},
        {300, 0xFF000000, {250, 230, 59}},
        {300, 0xFFFF0000, {211, 39, 0}},     // red
        {300, 0xFF00FF00, {42, 146, 41}},    // green
        {300, 0x00FFFF00, {27, 0, 119}},     // blue
        {300, 0xFFFFFFFF, {0, 0, 0}},        // inks on top of each other darken
        {300, 0x00000033, {216, 216, 216}},  // not 229: dots grow on the paper
        {300, 0xCC663333, {171, 128, 62}},
        {600, 0x0000007F, {30, 30, 30}},  // half the ink is full ink at 600 dpi
        {600, 0x00000080, {28, 28, 28}},
        {600, 0x000000FF, {28, 28, 28}},
        {600, 0x00003300, {174, 227, 243}},
        {150, 0x00003300, {215, 242, 249}},
    };
    for (const auto& each : shown) {
        EXPECT_EQ(InkModel(each.dpi).OnPaper(each.inkValue), each.color) << std::hex << each.inkValue;
    }
}

TEST(InkModel, FollowsItsDefinitionForAllAmounts) {
    for (const uint32_t dpi : {300u, 600u}) {
        const InkModel model(dpi);
        const PlainModel plain{dpi == 600 ? 127.5 : 255.0};
        uint32_t inkValue = 0;
        for (int i = 0; i < 20'000; ++i) {
            inkValue = i < 1024 ? static_cast<uint32_t>(i % 256) << (8 * (i / 256))
                                : inkValue * 1664525 + 1013904223;
            const Rgb shown = model.OnPaper(inkValue);
            ASSERT_NEAR(shown.red, plain.Shown(inkValue, 0), 1) << std::hex << inkValue;
            ASSERT_NEAR(shown.green, plain.Shown(inkValue, 1), 1) << std::hex << inkValue;
            ASSERT_NEAR(shown.blue, plain.Shown(inkValue, 2), 1) << std::hex << inkValue;
        }
    }
}

TEST(InkModel, OneInkAloneShowsItsAmount) {
    const InkModel model(300);
    EXPECT_EQ(model.Gray(0x04030201, kBlackInk), 254);
    EXPECT_EQ(model.Gray(0x04030201, kCyanInk), 253);
    EXPECT_EQ(model.Gray(0x04030201, kMagentaInk), 252);
    EXPECT_EQ(model.Gray(0x04030201, kYellowInk), 251);
    EXPECT_EQ(InkModel(600).Gray(0x00000033, kBlackInk), 153);
    EXPECT_EQ(InkModel(600).Gray(0x00000080, kBlackInk), 0);
}

}  // namespace orvex::tools
