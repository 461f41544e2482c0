// The qualities that a printer's user expects of the installed profiles, verified through the driver's
// look-up.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "tests/tools/orvexprofile/profile_samples.h"
#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/recipe.h"

namespace orvex::tools::profile {

namespace {

struct InstalledProfile {
    const char* file;
    const char* name;
    double limit;  // percent
};

void PrintTo(const InstalledProfile& profile, std::ostream* out) {
    *out << profile.file;
}

constexpr InstalledProfile kNeutral = {"neutral", "Neutral", 230};
constexpr InstalledProfile kCoated = {"coated", "Coated paper", 200};

class InstalledProfiles : public testing::TestWithParam<InstalledProfile> {
  protected:
    ProfileFacts Load(PrintVariant variant) const {
        return LoadAccepted(
            std::filesystem::path(ORVEX_INSTALLATION) / "profiles" / (std::string(GetParam().file) + ".zvp"),
            variant);
    }
    Separation Model() const {
        return Separation(
            ReadRecipe(std::filesystem::path(ORVEX_RECIPES) / (std::string(GetParam().file) + ".json"))
                .model);
    }
};

constexpr uint32_t kGray = 0x010101;

TEST_P(InstalledProfiles, AreAcceptedByTheDriver) {
    for (PrintVariant variant : kBothVariants) {
        const ProfileFacts facts = Load(variant);
        EXPECT_EQ(facts.version, 5);
        EXPECT_EQ(facts.Name(), GetParam().name);
        EXPECT_EQ(facts.Codes(), std::nullopt);
        EXPECT_EQ(MeasureInks(5, LoadedEntries(5)).marks, 0u);
    }
}

TEST_P(InstalledProfiles, PrintWhiteWithoutInk) {
    for (PrintVariant variant : kBothVariants) {
        Load(variant);
        EXPECT_EQ(LookupColor(0xFFFFFF), 0u);
    }
}

TEST_P(InstalledProfiles, PrintBlackWithAllOfTheBlackInkAndSomeColor) {
    Load(PrintVariant::kOther);
    const uint32_t black = LookupColor(0);
    EXPECT_EQ(InkAmount(black, kBlackInk), 255u);
    for (int ink : {kCyanInk, kMagentaInk, kYellowInk}) {
        EXPECT_GE(InkAmount(black, ink), 20u);
        EXPECT_LE(InkAmount(black, ink), 60u);
    }
    Load(PrintVariant::kAt600);
    EXPECT_EQ(LookupColor(0), ScaleInk(black, 50));
}

TEST_P(InstalledProfiles, KeepAllInksTogetherWithinTheirLimit) {
    for (PrintVariant variant : kBothVariants) {
        Load(variant);
        // At 600 dpi each amount is half of one within the limit, and may be rounded up.
        const double limit = GetParam().limit * 255 / 100;
        const double most = variant == PrintVariant::kAt600 ? limit / 2 + 2 : limit;
        uint32_t largest = 0;
        for (uint32_t inks : LoadedEntries(5)) largest = std::max(largest, TotalInk(inks));
        for (uint32_t inks : PrintedInks(ColorsEvery(5))) largest = std::max(largest, TotalInk(inks));
        EXPECT_LE(largest, most);
        EXPECT_GE(largest, most * 0.9);
    }
}

// Returns the lightness, 0 to 100, of a gray of that density: the measure by which the eye sees ink.
double Lightness(double density) {
    return 116 * std::cbrt(std::pow(10, -density)) - 16;
}

TEST_P(InstalledProfiles, PrintGraysWithoutAHue) {
    Load(PrintVariant::kOther);
    const Separation model = Model();
    for (uint32_t component = 0; component < 256; ++component) {
        const auto printed = model.PrintedDensity(LookupColor(component * kGray));
        const auto [least, most] = std::minmax_element(printed.begin(), printed.end());
        EXPECT_LE(Lightness(*least) - Lightness(*most), 1) << component;
        // Highlights are a little lighter than the picture, as the recipes reduce small amounts.
        const double tolerance = component < 192 ? 1.5 : 2.75;
        EXPECT_NEAR(Lightness(printed[1]), Lightness(model.WantedDensity(component)), tolerance) << component;
    }
}

TEST_P(InstalledProfiles, PrintGrayRampsWithoutWavesOrSteps) {
    Load(PrintVariant::kOther);
    const Separation model = Model();
    uint32_t blackBefore = 0;
    double lightnessBefore = Lightness(0);
    for (uint32_t component = 255; component-- > 0;) {
        const uint32_t inks = LookupColor(component * kGray), black = InkAmount(inks, kBlackInk);
        const double lightness = Lightness(model.PrintedDensity(inks)[1]);
        EXPECT_GE(black, blackBefore) << component;
        EXPECT_LE(black - blackBefore, 4u) << component;
        // Amounts are rounded down, so one of them may drop by a step.
        EXPECT_LE(lightness, lightnessBefore + 0.35) << component;
        EXPECT_GE(lightness, lightnessBefore - 1.5) << component;
        blackBefore = black;
        lightnessBefore = lightness;
    }
}

TEST_P(InstalledProfiles, PrintRampsOfPureInksWithNothingElse) {
    const struct {
        int shift;
        int ink;
    } ramps[] = {{16, kCyanInk}, {8, kMagentaInk}, {0, kYellowInk}};
    for (PrintVariant variant : kBothVariants) {
        Load(variant);
        for (const auto& ramp : ramps) {
            uint32_t before = 0;
            for (uint32_t component = 256; component-- > 0;) {
                const uint32_t inks = LookupColor(kWhite ^ ((255 - component) << ramp.shift));
                const uint32_t amount = InkAmount(inks, ramp.ink);
                EXPECT_EQ(TotalInk(inks), amount) << kInkLetters[static_cast<size_t>(ramp.ink)] << component;
                EXPECT_GE(amount + 1, before) << kInkLetters[static_cast<size_t>(ramp.ink)] << component;
                before = amount;
            }
        }
    }
}

TEST_P(InstalledProfiles, KeepNearlyWhitePaperClean) {
    for (PrintVariant variant : kBothVariants) {
        Load(variant);
        for (uint32_t red = 240; red < 256; ++red) {
            for (uint32_t green = 240; green < 256; ++green) {
                for (uint32_t blue = 240; blue < 256; ++blue) {
                    const uint32_t inks = LookupColor(ColorIndex(red, green, blue));
                    ASSERT_EQ(InkAmount(inks, kBlackInk), 0u);
                    const uint32_t least = std::min({red, green, blue});
                    if (least >= 254) {
                        ASSERT_LE(TotalInk(inks), 2u) << std::hex << ColorIndex(red, green, blue);
                    }
                    if (red == 255) {
                        ASSERT_EQ(InkAmount(inks, kCyanInk), 0u);
                    }
                    if (green == 255) {
                        ASSERT_EQ(InkAmount(inks, kMagentaInk), 0u);
                    }
                    if (blue == 255) {
                        ASSERT_EQ(InkAmount(inks, kYellowInk), 0u);
                    }
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, InstalledProfiles, testing::Values(kNeutral, kCoated),
                         [](const auto& instance) { return std::string(instance.param.file); });

TEST(InstalledProfiles, AreAllTested) {
    std::vector<std::string> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(ORVEX_INSTALLATION) / "profiles")) {
        files.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(files, testing::UnorderedElementsAre("neutral.zvp", "coated.zvp"));
}

}  // namespace

}  // namespace orvex::tools::profile
