#include "tools/orvexprofile/separation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tools/orvexprofile/ink_treatment.h"

namespace orvex::tools::profile {

namespace {

// Returns inks that absorb only their own channel, without gain, so that results can be computed by hand.
SeparationModel IdealInks() {
    SeparationModel model;
    model.inks[kBlackInk].density = {1.5, 1.5, 1.5};
    model.inks[kCyanInk].density = {1.5, 0, 0};
    model.inks[kMagentaInk].density = {0, 1.5, 0};
    model.inks[kYellowInk].density = {0, 0, 1.5};
    model.blackDensity = 1.5;
    model.chromaDensity = 1.5;
    model.blackStart = 0.3;
    return model;
}

TEST(Separation, FillsUpTheDarkestNeutralWithColor) {
    SeparationModel model = IdealInks();
    model.blackDensity = 1.8;
    // A density of 0.3 more absorbs 50.1 % of the light; the solid ink absorbs 96.8 %.
    EXPECT_EQ(Separation(model).Inks(0), PackInks(255, 131, 131, 131));
}

TEST(Separation, PrintsWhiteBlackAndPrimariesWithTheirOwnInksOnly) {
    const Separation separation(IdealInks());
    EXPECT_EQ(separation.Inks(0xFFFFFF), 0u);
    EXPECT_EQ(separation.Inks(0x000000), PackInks(255, 0, 0, 0));
    EXPECT_EQ(separation.Inks(0x00FFFF), PackInks(0, 255, 0, 0));
    EXPECT_EQ(separation.Inks(0xFF00FF), PackInks(0, 0, 255, 0));
    EXPECT_EQ(separation.Inks(0xFFFF00), PackInks(0, 0, 0, 255));
    EXPECT_EQ(separation.Inks(0xFF0000), PackInks(0, 0, 255, 255));
}

TEST(Separation, CoversPaperAsMuchAsTheLightAsksFor) {
    // 188 is half of the light, 0.503; black reflects 10^-1.5 of it.
    const double light = std::pow((188 / 255.0 + 0.055) / 1.055, 2.4), black = std::pow(10, -1.5);
    const double covered = (1 - (black + (1 - black) * light)) / (1 - black);
    const uint32_t inks = Separation(IdealInks()).Inks(0xFFFFBC);
    EXPECT_EQ(inks, PackInks(0, 0, 0, static_cast<uint32_t>(covered * 255 + 0.5)));
}

TEST(Separation, AsksForLessInkIfDotsGain) {
    SeparationModel model = IdealInks();
    model.inks[kYellowInk].dotGain = 20;
    const double without = InkAmount(Separation(IdealInks()).Inks(0xFFFFBC), kYellowInk) / 255.0;
    const double with = InkAmount(Separation(model).Inks(0xFFFFBC), kYellowInk) / 255.0;
    EXPECT_NEAR(with + 0.8 * with * (1 - with), without, 0.005);
    EXPECT_EQ(InkAmount(Separation(model).Inks(0xFFFF00), kYellowInk), 255u);
}

TEST(Separation, SetsBlackInAtItsStartAndNeverInPureColors) {
    const Separation separation(IdealInks());
    uint32_t before = 0;
    for (uint32_t component = 256; component-- > 0;) {
        const uint32_t black = InkAmount(separation.Inks(component * 0x010101), kBlackInk);
        if (separation.WantedDensity(component) <= 0.3) {
            EXPECT_EQ(black, 0u) << component;
        }
        EXPECT_GE(black, before) << component;
        before = black;
        EXPECT_EQ(InkAmount(separation.Inks(0xFF0000 | component << 8), kBlackInk), 0u) << component;
        EXPECT_EQ(InkAmount(separation.Inks(0x00FF00 | component), kBlackInk), 0u) << component;
    }
    EXPECT_EQ(before, 255u);
}

TEST(Separation, CorrectsForWhatOtherInksAbsorb) {
    SeparationModel model = IdealInks();
    model.inks[kCyanInk].density = {1.5, 0.4, 0.15};
    model.inks[kMagentaInk].density = {0.2, 1.5, 0.5};
    model.inks[kYellowInk].density = {0.02, 0.1, 1.5};
    const Separation separation(model);
    for (uint32_t component : {60u, 100u, 140u, 180u, 220u}) {
        const auto printed = separation.PrintedDensity(separation.Inks(component * 0x010101));
        for (double density : printed)
            EXPECT_NEAR(density, separation.WantedDensity(component), 0.015) << component;
    }
}

TEST(Separation, ReducesSmallAmountsAndLeavesLargeOnes) {
    SeparationModel model = IdealInks();
    model.highlightEase = 7;
    const Separation eased(model), plain(IdealInks());
    const auto yellow = [](const Separation& separation, uint32_t blue) {
        return InkAmount(separation.Inks(0xFFFF00 | blue), kYellowInk);
    };
    EXPECT_LT(yellow(eased, 250), 0.6 * yellow(plain, 250));
    EXPECT_NEAR(yellow(eased, 128), yellow(plain, 128), 1);
    EXPECT_EQ(yellow(eased, 0), 255u);
}

TEST(Separation, CompressesChromaSoftly) {
    SeparationModel model = IdealInks();
    model.chromaDensity = 1.0;
    const Separation separation(model);
    uint32_t before = 0;
    for (uint32_t blue = 256; blue-- > 0;) {
        const uint32_t amount = InkAmount(separation.Inks(0xFFFF00 | blue), kYellowInk);
        EXPECT_GE(amount, before);
        before = amount;
    }
    // A density of 1.0 absorbs 90 % of the light; the solid ink absorbs 96.8 %.
    EXPECT_EQ(before, 237u);
}

}  // namespace

}  // namespace orvex::tools::profile
