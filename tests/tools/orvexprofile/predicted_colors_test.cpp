#ifdef ORVEX_LITTLE_CMS
#include "tools/orvexprofile/predicted_colors.h"

#include <gmock/gmock.h>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"
#endif

namespace orvex::tools::profile {

// Native only: Little CMS has no Windows package to build against.
#ifdef ORVEX_LITTLE_CMS

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

LabColor PredictedLab(InkValue inks, PrintVariant variant = PrintVariant::kOther,
                      PaperColor paper = PaperColor::kScreenWhite) {
    return PredictedColors(kPrinterIcc, variant, paper).Lab({&inks, 1})[0];
}

TEST(PredictedColors, ArePapersWithoutInk) {
    const LabColor white = PredictedLab(0);
    EXPECT_NEAR(white.lightness, 100, 0.5);
    EXPECT_NEAR(white.a, 0, 0.5);
    EXPECT_NEAR(white.b, 0, 0.5);
    EXPECT_LT(PredictedLab(0, PrintVariant::kOther, PaperColor::kOwn).lightness, 95);
}

TEST(PredictedColors, TellEachInkFromTheOthers) {
    const LabColor black = PredictedLab(PackInks(255, 0, 0, 0)), cyan = PredictedLab(PackInks(0, 255, 0, 0)),
                   magenta = PredictedLab(PackInks(0, 0, 255, 0)),
                   yellow = PredictedLab(PackInks(0, 0, 0, 255));
    EXPECT_LT(black.lightness, 35);
    EXPECT_NEAR(black.a, 0, 5);
    EXPECT_LT(cyan.a, -20);
    EXPECT_LT(cyan.b, -30);
    EXPECT_GT(magenta.a, 60);
    EXPECT_GT(yellow.b, 70);
}

TEST(PredictedColors, TakeHalfTheAmountForFullInkAt600Dpi) {
    for (const InkValue inks : {PackInks(0, 0, 0, 0), PackInks(10, 20, 100, 200), PackInks(0, 254, 2, 64)}) {
        const InkValue half = inks >> 1 & 0x7F7F7F7F;
        EXPECT_EQ(DifferenceOf(PredictedLab(half, PrintVariant::kAt600), PredictedLab(inks)), 0);
    }
    EXPECT_EQ(DifferenceOf(PredictedLab(PackInks(0, 128, 0, 0), PrintVariant::kAt600),
                           PredictedLab(PackInks(0, 255, 0, 0))),
              0);
}

TEST(PredictedColors, HaveNoLimitOfTheirNumber) {
    const PredictedColors colors(kPrinterIcc, PrintVariant::kOther, PaperColor::kScreenWhite);
    std::vector<InkValue> inks(10'000, PackInks(0, 0, 0, 255));
    inks.back() = PackInks(255, 0, 0, 0);
    const std::vector<LabColor> lab = colors.Lab(inks);
    ASSERT_EQ(lab.size(), inks.size());
    EXPECT_EQ(DifferenceOf(lab[9'998], PredictedLab(inks[0])), 0);
    EXPECT_EQ(DifferenceOf(lab[9'999], PredictedLab(inks.back())), 0);
}

TEST(PredictedColors, NeedThePrintersTableForThem) {
    std::string bytes = ReadBytes(kPrinterIcc);
    for (const char table : {'0', '1', '2'}) {
        const size_t place = bytes.find(std::string("A2B") + table);
        ASSERT_NE(place, std::string::npos) << table;
        bytes.replace(place, 3, "gon");
    }
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Write("tables.icc", bytes);
    EXPECT_THAT([&] { PredictedColors(path, PrintVariant::kOther, PaperColor::kScreenWhite); },
                ThrowsMessage<std::runtime_error>(HasSubstr("no conversion from inks to colours")));
    EXPECT_THAT([&] { PredictedColors(kScreenIcc, PrintVariant::kOther, PaperColor::kScreenWhite); },
                ThrowsMessage<std::runtime_error>(HasSubstr("not the profile of a CMYK printer")));
}

// A published pair whose hue angles lie on both sides of blue's rotation term.
TEST(DifferenceOf, IsThatOfCiede2000) {
    EXPECT_NEAR(DifferenceOf({50, 2.6772, -79.7751}, {50, 0, -82.7485}), 2.0425, 1e-4);
    EXPECT_EQ(DifferenceOf({40, 1, 2}, {40, 1, 2}), 0);
}

TEST(CompareColors, ShowsTheMeanTheUsualMostAndTheLargest) {
    std::vector<LabColor> expected(100, {50, 0, 0}), found = expected;
    found[7] = {50, 0, 40};
    found[50] = found[51] = found[52] = found[53] = {50, 0, 10};
    found[60] = {50, 0, 5};
    const ColorDifference difference = CompareColors(expected, found);
    const double largest = DifferenceOf(expected[7], found[7]), four = DifferenceOf(expected[50], found[50]),
                 least = DifferenceOf(expected[60], found[60]);
    EXPECT_EQ(difference.largest, largest);
    EXPECT_EQ(difference.largestAt, 7u);
    EXPECT_EQ(difference.most95, least) << "five of 100 colors are further off";
    EXPECT_NEAR(difference.mean, (largest + 4 * four + least) / 100, 1e-9);
    EXPECT_EQ(CompareColors({expected.data(), 1}, {found.data() + 60, 1}).most95, least);
}

}  // namespace
#endif

}  // namespace orvex::tools::profile
