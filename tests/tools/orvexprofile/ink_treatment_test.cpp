#include "tools/orvexprofile/ink_treatment.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tools/orvexprofile/ink_statistics.h"

namespace orvex::tools::profile {

namespace {

using testing::HasSubstr;

TEST(InkLimit, LeavesInksWithinItAlone) {
    EXPECT_EQ(LimitInk(PackInks(255, 100, 100, 55), 200), PackInks(255, 100, 100, 55));
    EXPECT_EQ(LimitInk(PackInks(255, 255, 255, 255), 400), 0xFFFFFFFFu);
    EXPECT_EQ(LimitInk(0, 100), 0u);
}

TEST(InkLimit, TakesFromTheColorsInProportionAndKeepsBlack) {
    EXPECT_EQ(LimitInk(PackInks(255, 255, 255, 255), 200), PackInks(255, 85, 85, 85));
    EXPECT_EQ(LimitInk(PackInks(0, 200, 100, 0), 100), PackInks(0, 170, 85, 0));
    EXPECT_EQ(LimitInk(PackInks(255, 10, 0, 0), 100), PackInks(255, 0, 0, 0));
}

TEST(InkLimit, IsNeverExceededByAnyInks) {
    for (uint32_t a = 0; a < 256; a += 15) {
        for (uint32_t b = 0; b < 256; b += 17) {
            for (double limit : {100.0, 150.5, 220.0, 399.0}) {
                const uint32_t limited = LimitInk(PackInks(a, b, 255 - a, 251), limit);
                EXPECT_LE(TotalInk(limited), limit * 255 / 100) << a << ' ' << b << ' ' << limit;
            }
        }
    }
}

TEST(InkScale, RoundsEveryAmountAndStopsAtFull) {
    EXPECT_EQ(ScaleInk(PackInks(255, 1, 3, 200), 50), PackInks(128, 1, 2, 100));
    EXPECT_EQ(ScaleInk(PackInks(255, 100, 128, 0), 200), PackInks(255, 200, 255, 0));
    EXPECT_EQ(ScaleInk(PackInks(255, 1, 3, 200), 100), PackInks(255, 1, 3, 200));
    EXPECT_EQ(ScaleInk(PackInks(40, 49, 50, 0), 1), PackInks(0, 0, 1, 0));
}

constexpr uint32_t kDark = 0x102030;

InkSource ConstantSource(uint32_t inks) {
    return [inks](std::span<const uint32_t>, std::span<uint32_t> out) {
        for (uint32_t& value : out) value = inks;
    };
}

uint32_t TreatedInks(uint32_t color, uint32_t inks, double limit, double scale) {
    uint32_t result = 0;
    Treated(ConstantSource(inks), limit, scale)({&color, 1}, {&result, 1});
    return result;
}

TEST(InkTreatment, LimitsFirstAndScalesThen) {
    EXPECT_EQ(TreatedInks(kDark, 0xFFFFFFFF, 200, 50), PackInks(128, 43, 43, 43));
    EXPECT_EQ(TreatedInks(kDark, 0xFFFFFFFF, 200, 200), PackInks(255, 170, 170, 170));
}

TEST(InkTreatment, GivesWhiteNoInkAndNeverTheNotComputedMark) {
    EXPECT_EQ(TreatedInks(0xFFFFFF, 0x01020304, 400, 100), 0u);
    EXPECT_EQ(TreatedInks(0xFFFFFE, 0x01020304, 400, 100), 0x01020304u);
    EXPECT_EQ(TreatedInks(kDark, 0xFFFFFFFF, 400, 100), 0xFFFFFFFEu);
    EXPECT_EQ(TreatedInks(kDark, 0xC0C0C0C0, 400, 200), 0xFFFFFFFEu);
}

TEST(InkTreatment, MakesBothVariantsOfAProfile) {
    Profile profile;
    FillVariants(profile, ConstantSource(PackInks(200, 100, 50, 20)), {.scaleAt600 = 50, .scaleOther = 110});
    ASSERT_EQ(profile.at600.size(), 4913u);
    ASSERT_EQ(profile.other.size(), 4913u);
    EXPECT_EQ(profile.at600.front(), PackInks(100, 50, 25, 10));
    EXPECT_EQ(profile.other.front(), PackInks(220, 110, 55, 22));
    EXPECT_EQ(profile.at600.back(), 0u);
    EXPECT_EQ(profile.other.back(), 0u);
}

TEST(InkStatistics, TellLeastMostMeanAndTheLargestTotal) {
    Variant variant(4913, PackInks(10, 20, 30, 40));
    variant[0] = PackInks(255, 0, 0, 0);
    variant[289 * 16 + 17 * 2 + 1] = PackInks(10, 250, 250, 250);
    variant.back() = PackInks(0, 0, 0, 3);
    const InkStatistics statistics = MeasureInks(5, variant);
    EXPECT_EQ(statistics.inks[kBlackInk].least, 0u);
    EXPECT_EQ(statistics.inks[kBlackInk].most, 255u);
    EXPECT_DOUBLE_EQ(statistics.inks[kBlackInk].mean, (10.0 * 4911 + 255) / 4913);
    EXPECT_EQ(statistics.inks[kCyanInk].most, 250u);
    EXPECT_EQ(statistics.largestTotal, 760u);
    EXPECT_EQ(statistics.largestTotalColor, 0xFF2010u);
    EXPECT_EQ(statistics.white, PackInks(0, 0, 0, 3));
    EXPECT_EQ(statistics.marks, 0u);
}

TEST(InkStatistics, CountEntriesWithTheNotComputedMark) {
    Variant variant(4913, 0);
    variant[5] = variant[6] = kNotComputed;
    EXPECT_EQ(MeasureInks(5, variant).marks, 2u);
}

TEST(InkDifference, TellsTheLargestAndTheMeanOfEachInk) {
    const uint32_t expected[] = {PackInks(10, 0, 0, 0), PackInks(0, 5, 0, 255), 0, 7};
    const uint32_t found[] = {PackInks(4, 0, 0, 0), PackInks(0, 9, 0, 0), 0, 7};
    const InkDifference difference = CompareInks(expected, found);
    EXPECT_EQ(difference.colors, 4u);
    EXPECT_EQ(difference.different, 2u);
    EXPECT_EQ(difference.inks[kBlackInk].most, 6u);
    EXPECT_DOUBLE_EQ(difference.inks[kBlackInk].mean, 1.5);
    EXPECT_EQ(difference.inks[kCyanInk].most, 4u);
    EXPECT_DOUBLE_EQ(difference.inks[kCyanInk].mean, 1);
    EXPECT_EQ(difference.inks[kMagentaInk].most, 0u);
    EXPECT_EQ(difference.inks[kYellowInk].most, 255u);
    EXPECT_DOUBLE_EQ(difference.inks[kYellowInk].mean, 63.75);
    EXPECT_EQ(CompareInks({}, {}).colors, 0u);
}

TEST(InkStatistics, ShowWhatIsWrongWithAVariant) {
    Variant variant(4913, 0);
    variant[3] = kNotComputed;
    variant.back() = PackInks(1, 0, 2, 0);
    std::ostringstream out;
    ReportStatistics(out, "inks", MeasureInks(5, variant));
    EXPECT_THAT(out.str(), HasSubstr("largest total 1020 (400.0 %) at #000030"));
    EXPECT_THAT(out.str(), HasSubstr("white gets ink: K 1 C 0 M 2 Y 0"));
    EXPECT_THAT(out.str(), HasSubstr("taken by the driver as not computed (all four inks full): 1"));
}

TEST(InkDifference, IsShownOnlyWhereThereIsAny) {
    std::ostringstream out;
    const uint32_t a[] = {PackInks(9, 0, 0, 0), 0}, b[] = {PackInks(5, 0, 0, 0), 0};
    ReportDifference(out, "Loss", CompareInks(a, b));
    EXPECT_EQ(out.str(),
              "  Loss: 1 of 2 colours differ\n"
              "       largest     mean\n"
              "    K        4    2.000\n"
              "    C        0    0.000\n"
              "    M        0    0.000\n"
              "    Y        0    0.000\n");
    out.str("");
    ReportDifference(out, "Loss", CompareInks(a, a));
    EXPECT_EQ(out.str(), "  Loss: 0 of 2 colours differ\n");
}

}  // namespace

}  // namespace orvex::tools::profile
