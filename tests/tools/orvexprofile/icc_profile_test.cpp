#ifdef ORVEX_LITTLE_CMS
#include "tools/orvexprofile/icc_profile.h"

#include <gmock/gmock.h>
#include <lcms2.h>

#include <cstdio>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"
#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/loaded_profile.h"
#endif

namespace orvex::tools::profile {

// Native only: Little CMS has no Windows package to build against.
#ifdef ORVEX_LITTLE_CMS

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

IccProfile PrinterProfile(RenderingIntent intent = RenderingIntent::kPerceptual, bool compensation = false) {
    return IccProfile(kPrinterIcc, intent, compensation);
}

uint32_t Inks(const IccProfile& icc, uint32_t color) {
    uint32_t inks = 0;
    icc.Convert({&color, 1}, {&inks, 1});
    return inks;
}

TEST(IccProfile, GivesInksInTheDriversOrder) {
    const IccProfile icc = PrinterProfile(RenderingIntent::kRelativeColorimetric);
    EXPECT_EQ(Inks(icc, 0xFFFFFF), 0u);
    const uint32_t red = Inks(icc, 0xFF0000);
    EXPECT_LE(InkAmount(red, kBlackInk), 5u);
    EXPECT_LE(InkAmount(red, kCyanInk), 30u);
    EXPECT_GE(InkAmount(red, kMagentaInk), 200u);
    EXPECT_GE(InkAmount(red, kYellowInk), 200u);
    EXPECT_EQ(icc.Description(), "Artifex CMYK SWOP Profile");
}

// Writes a printer's profile with another table for each intent: black ink alone, in these amounts.
void WriteTableForEachIntent(const std::filesystem::path& path, const uint16_t (&amounts)[3]) {
    constexpr cmsTagSignature kTables[] = {cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigBToA2Tag};
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.1);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    for (size_t intent = 0; intent < 3; ++intent) {
        uint16_t corners[8][4] = {};
        for (auto& corner : corners) corner[3] = amounts[intent];
        cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, 3, 4);
        cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocCLut16bit(nullptr, 2, 3, 4, corners[0]));
        EXPECT_TRUE(cmsWriteTag(profile, kTables[intent], pipeline));
        cmsPipelineFree(pipeline);
    }
    EXPECT_TRUE(cmsSaveProfileToFile(profile, path.string().c_str()));
    cmsCloseProfile(profile);
}

TEST(IccProfile, TakesTheTableOfTheIntent) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "intents.icc";
    WriteTableForEachIntent(path, {0x1111, 0x4444, 0x9999});
    const auto black = [&](RenderingIntent intent) {
        return Inks(IccProfile(path, intent, false), 0x405060);
    };
    EXPECT_EQ(black(RenderingIntent::kPerceptual), PackInks(0x11, 0, 0, 0));
    EXPECT_EQ(black(RenderingIntent::kRelativeColorimetric), PackInks(0x44, 0, 0, 0));
    EXPECT_EQ(black(RenderingIntent::kSaturation), PackInks(0x99, 0, 0, 0));
    EXPECT_EQ(black(RenderingIntent::kAbsoluteColorimetric), PackInks(0x44, 0, 0, 0));
    EXPECT_EQ(IccProfile(path, RenderingIntent::kPerceptual, false).Description(), "");
}

TEST(IccProfile, KeepsThePapersColorInTheAbsoluteIntentOnly) {
    EXPECT_EQ(Inks(PrinterProfile(RenderingIntent::kRelativeColorimetric), 0xFFFFFF), 0u);
    EXPECT_NE(Inks(PrinterProfile(RenderingIntent::kAbsoluteColorimetric), 0xE0E0E0),
              Inks(PrinterProfile(RenderingIntent::kRelativeColorimetric), 0xE0E0E0));
}

TEST(IccProfile, CompensatesForTheBlackPoint) {
    const auto darkGray = [](bool compensation) {
        return Inks(PrinterProfile(RenderingIntent::kRelativeColorimetric, compensation), 0x202020);
    };
    EXPECT_LT(TotalInk(darkGray(true)), TotalInk(darkGray(false))) << "more shades of dark grey than before";
}

TEST(IccProfile, IsRefusedUnlessItIsACmykPrinters) {
    const ScratchFolder scratch;
    const auto open = [](const std::filesystem::path& path) {
        return [path] { IccProfile(path, RenderingIntent::kPerceptual, false); };
    };
    EXPECT_THAT(open(scratch.Path() / "none.icc"),
                ThrowsMessage<std::runtime_error>(HasSubstr("none.icc can't be opened")));
    EXPECT_THAT(open(scratch.Path()), ThrowsMessage<std::runtime_error>(HasSubstr("is a folder")));
    EXPECT_THAT(open(scratch.Write("text.icc", "no profile at all")),
                ThrowsMessage<std::runtime_error>(HasSubstr("not an ICC profile")));
    EXPECT_THAT(open(kScreenIcc),
                ThrowsMessage<std::runtime_error>(HasSubstr("not the profile of a CMYK printer")));
}

TEST(IccProfile, IsRefusedWithoutTheTablesOfAPrinter) {
    std::string bytes = ReadBytes(kPrinterIcc);
    for (char table : {'0', '1', '2'}) {
        const size_t place = bytes.find(std::string("B2A") + table);
        ASSERT_NE(place, std::string::npos) << table;
        bytes.replace(place, 3, "gon");
    }
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Write("tables.icc", bytes);
    EXPECT_THAT([&] { IccProfile(path, RenderingIntent::kPerceptual, false); },
                ThrowsMessage<std::runtime_error>(HasSubstr("no conversion from sRGB")));
    EXPECT_THAT(
        [&] {
            IccProfile(scratch.Write("cut.icc", bytes.substr(0, 1000)), RenderingIntent::kPerceptual, false);
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("no conversion from sRGB")));
}

// Returns whether a component is one of the few that the tests of large versions look at.
bool IsSparse(uint32_t component) {
    return component % 36 == 0 || component == 255;
}

// Returns the colors with sparse reds and greens and every `step`th blue, all below `end`.
std::vector<uint32_t> Sparse(uint32_t step, uint32_t end) {
    std::vector<uint32_t> colors;
    for (uint32_t red = 0; red < end; ++red) {
        for (uint32_t green = 0; green < end; ++green) {
            if (!IsSparse(red) || !IsSparse(green)) continue;
            for (uint32_t blue = 0; blue < end; blue += step) colors.push_back(ColorIndex(red, green, blue));
        }
    }
    return colors;
}

// A profile built from the printer's ICC profile, whose answers are compared with those of Little CMS.
class BuiltFromIcc : public testing::Test {
  protected:
    void Build(int version) {
        Profile profile;
        profile.version = version;
        profile.name = "Built";
        if (version == 5) {
            FillVariants(profile, icc_.Source(), treatment_);
        } else {
            profile.at600 = SampleVariant(version, SparseSource(treatment_.scaleAt600));
            profile.other = SampleVariant(version, SparseSource(treatment_.scaleOther));
        }
        WriteProfileFile(profile, path_);
    }
    // Compares the driver's inks of the colors with those of Little CMS.
    InkDifference Compare(PrintVariant variant, const std::vector<uint32_t>& colors) const {
        LoadAccepted(path_, variant);
        std::vector<uint32_t> wanted(colors.size());
        const double scale = variant == PrintVariant::kAt600 ? treatment_.scaleAt600 : treatment_.scaleOther;
        Treated(icc_.Source(), treatment_.limit, scale)(colors, wanted);
        return CompareInks(wanted, PrintedInks(colors));
    }

    const IccProfile icc_ = PrinterProfile(RenderingIntent::kPerceptual, true);
    const InkTreatment treatment_ = {.limit = 300, .scaleAt600 = 50, .scaleOther = 100};

  private:
    // Asks only for the runs of blue that Sparse() returns: all 2^24 colors take Little CMS too long for a
    // test.
    InkSource SparseSource(double scale) const {
        const InkSource treated = Treated(icc_.Source(), treatment_.limit, scale);
        return [treated](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
            if (IsSparse(colors[0] >> 16) && IsSparse(colors[0] >> 8 & 0xFF)) treated(colors, inks);
        };
    }

    const ScratchFolder scratch_;
    const std::filesystem::path path_ = scratch_.Path() / "built.zvp";
};

// Returns the colors whose components are `first` and every `step` from there.
std::vector<uint32_t> Lattice(int first, int step) {
    std::vector<uint32_t> colors;
    for (int red = first; red < 256; red += step) {
        for (int green = first; green < 256; green += step) {
            for (int blue = first; blue < 256; blue += step) {
                colors.push_back(ColorIndex(static_cast<uint32_t>(red), static_cast<uint32_t>(green),
                                            static_cast<uint32_t>(blue)));
            }
        }
    }
    return colors;
}

TEST_F(BuiltFromIcc, Version5AnswersAsLittleCmsAtTheGrid) {
    Build(5);
    for (PrintVariant variant : kBothVariants) {
        EXPECT_EQ(Compare(variant, Lattice(0, 16)).different, 0u);
        EXPECT_EQ(Compare(variant, ColorsEvery(255)).different, 0u);
    }
}

// An interpolated amount is between those of its cell's corners, so it can't be further from Little CMS's
// answer than that answer is from the furthest corner.
TEST_F(BuiltFromIcc, Version5StaysBetweenTheCornersOfEachCell) {
    Build(5);
    const std::vector<uint32_t> colors = Lattice(7, 16);
    const InkDifference difference = Compare(PrintVariant::kOther, colors);
    EXPECT_EQ(difference.colors, colors.size());
    for (uint32_t color : colors) {
        const uint32_t inks = LookupColor(color);
        for (int ink = 0; ink < kInks; ++ink) {
            uint32_t least = 255, most = 0;
            for (int corner = 0; corner < 8; ++corner) {
                uint32_t place = 0;
                for (int axis = 0; axis < 3; ++axis) {
                    const int step = static_cast<int>(color >> (8 * axis) & 0xFF) / 16 + (corner >> axis & 1);
                    place |= GridValue(step) << (8 * axis);
                }
                const uint32_t amount = InkAmount(g_colorCache[place], ink);
                least = std::min(least, amount);
                most = std::max(most, amount);
            }
            // Rounding down may take off one.
            ASSERT_GE(InkAmount(inks, ink) + 1, least) << std::hex << color;
            ASSERT_LE(InkAmount(inks, ink), most) << std::hex << color;
        }
    }
}

// docs/color-profiles.md shows these figures.
TEST_F(BuiltFromIcc, Version5InterpolatesWithTheDocumentedError) {
    Build(5);
    const struct {
        PrintVariant variant;
        uint32_t largest[kInks];
        double mean[kInks];
    } documented[] = {
        {PrintVariant::kAt600, {3, 6, 6, 7}, {0.191, 0.571, 0.461, 0.440}},
        {PrintVariant::kOther, {6, 11, 11, 13}, {0.228, 0.773, 0.649, 0.697}},
    };
    for (const auto& expected : documented) {
        const InkDifference difference = Compare(expected.variant, ColorsEvery(5));
        for (size_t ink = 0; ink < kInks; ++ink) {
            std::printf("driver against Little CMS, %s, %c: largest %u, mean %.3f\n",
                        expected.variant == PrintVariant::kAt600 ? "600 dpi" : "other", kInkLetters[ink],
                        difference.inks[ink].most, difference.inks[ink].mean);
            EXPECT_EQ(difference.inks[ink].most, expected.largest[ink]) << kInkLetters[ink];
            EXPECT_NEAR(difference.inks[ink].mean, expected.mean[ink], 0.0005) << kInkLetters[ink];
        }
    }
}

TEST_F(BuiltFromIcc, Versions3And4AnswerAsLittleCmsAtEvenColors) {
    for (int version : {3, 4}) {
        Build(version);
        for (PrintVariant variant : kBothVariants)
            EXPECT_EQ(Compare(variant, Sparse(2, 254)).different, 0u) << version;
    }
    EXPECT_EQ(Compare(PrintVariant::kOther, {0xFFFFFF}).different, 0u) << "white of version 4";
}

TEST_F(BuiltFromIcc, Version2AnswersAsLittleCmsForEveryColor) {
    Build(2);
    for (PrintVariant variant : kBothVariants) EXPECT_EQ(Compare(variant, Sparse(1, 256)).different, 0u);
}

}  // namespace
#endif

}  // namespace orvex::tools::profile
