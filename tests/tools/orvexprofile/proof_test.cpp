#ifdef ORVEX_LITTLE_CMS
#include "tests/tools/orvexprofile/profile_tool_fixture.h"
#include "tools/common/number_text.h"
#include "tools/orvexprofile/predicted_colors.h"
#endif

namespace orvex::tools::profile {

// Native only: the tool needs Little CMS.
#ifdef ORVEX_LITTLE_CMS

namespace {

using testing::HasSubstr;
using testing::Not;

// The grid points of red and of gray.
constexpr size_t kRedEntry = 16 * 289;
constexpr size_t kGrayEntry = 8 * (289 + 17 + 1);

uint32_t Srgb(InkValue inks, PrintVariant variant, PaperColor paper) {
    uint8_t samples[3];
    PredictedColors(kPrinterIcc, variant, paper).Srgb({&inks, 1}, samples);
    return ColorIndex(samples[0], samples[1], samples[2]);
}

class Proof : public ProfileTool {
  protected:
    // Writes a profile whose red and gray have these inks at 600 dpi, and twice as much at others.
    std::string ProfileOf(InkValue red, InkValue gray) {
        Profile profile = PaperProfile();
        profile.at600[kRedEntry] = red;
        profile.at600[kGrayEntry] = gray;
        profile.other[kRedEntry] = red << 1;
        profile.other[kGrayEntry] = gray << 1;
        WriteProfileFile(profile, Path("art.zvp"));
        return Path("art.zvp");
    }
    // Writes art of 3 x 2 pixels: white, red, gray, and the reverse.
    std::string Art() {
        tools::Picture picture(3, 2, 3);
        picture.samples = {255, 255, 255, 255, 0, 0, 128, 128, 128, 128, 128, 128, 255, 0, 0, 255, 255, 255};
        SavePng(picture, 300, Path("art.png"));
        return Path("art.png");
    }
    void Show(const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"proof", Art(), "--icc", kPrinterIcc, "-o", Path("proof.png")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(Run(arguments), 0) << err_;
    }
};

TEST_F(Proof, ShowsTheColorsThatTheIccProfilePredictsForTheDriversInks) {
    const InkValue red = PackInks(0, 4, 110, 90), gray = PackInks(40, 20, 16, 15);
    const std::string profile = ProfileOf(red, gray);
    for (const PaperColor paper : {PaperColor::kScreenWhite, PaperColor::kOwn}) {
        for (const PrintVariant variant : kBothVariants) {
            std::vector<std::string> options = {"--profile", profile, "--variant",
                                                variant == PrintVariant::kAt600 ? "600" : "other"};
            if (paper == PaperColor::kOwn) options.emplace_back("--paper");
            Show(options);
            // Both variants print the same share of full ink.
            const uint32_t shownRed = Srgb(red << 1, PrintVariant::kOther, paper),
                           shownGray = Srgb(gray << 1, PrintVariant::kOther, paper),
                           shownPaper = Srgb(0, PrintVariant::kOther, paper);
            const RasterImage proof = LoadPng(Path("proof.png"));
            EXPECT_THAT(
                std::vector<uint32_t>(proof.Row(0), proof.Row(0) + 6),
                testing::ElementsAre(shownPaper, shownRed, shownGray, shownGray, shownRed, shownPaper));
            EXPECT_NEAR(proof.density->x * kMetersPerInch, 300, 0.1);
        }
    }
    EXPECT_TRUE(OpenPng(Path("proof.png")).Colors().srgb);
}

TEST_F(Proof, ShowsPaperInWhiteOrInItsOwnColor) {
    Show({});
    EXPECT_EQ(LoadPng(Path("proof.png")).Row(0)[0], 0xFFFFFFu);
    EXPECT_THAT(out_, HasSubstr("proof.png: relative colorimetric, on white\n"));
    Show({"--paper"});
    EXPECT_LT(LoadPng(Path("proof.png")).Row(0)[0] & 0xFF, 0xF5u);
    EXPECT_THAT(out_, HasSubstr("proof.png: absolute colorimetric, on the paper's own colour\n"));
}

TEST_F(Proof, UsesTheBuiltInConversionWithoutAProfile) {
    Show({});
    EXPECT_EQ(LoadPng(Path("proof.png")).Row(0)[1],
              Srgb(PackInks(0, 0, 255, 255), PrintVariant::kOther, PaperColor::kScreenWhite));
}

TEST_F(Proof, SaysWhichPixelsGetMoreThanFullInk) {
    const std::string profile = ProfileOf(PackInks(0, 0, 129, 0), PackInks(128, 0, 0, 0));
    Show({"--profile", profile, "--variant", "600"});
    EXPECT_THAT(out_, HasSubstr("\n2 pixels get more ink than the ICC profile's full amount"));
    EXPECT_EQ(LoadPng(Path("proof.png")).Row(0)[1],
              Srgb(PackInks(0, 0, 255, 0), PrintVariant::kOther, PaperColor::kScreenWhite));
    Show({"--profile", profile});
    EXPECT_THAT(out_, Not(HasSubstr("more ink")));
}

TEST_F(Proof, SaysWhatIsWrongAndWritesNothing) {
    const std::string art = Art(), output = Path("proof.png");
    EXPECT_EQ(Run({"proof", art, "--icc", kPrinterIcc, "-o", art}), 2);
    EXPECT_THAT(err_, HasSubstr("is the same file as the picture"));
    EXPECT_EQ(Run({"proof", art, "--icc", kScreenIcc, "-o", output}), 1);
    EXPECT_THAT(err_, HasSubstr("not the profile of a CMYK printer"));
    EXPECT_EQ(Run({"proof", art, "--icc", kPrinterIcc, "--profile", Path("none.zvp"), "-o", output}), 1);
    EXPECT_THAT(err_, HasSubstr("none.zvp can't be opened"));
    EXPECT_EQ(Run({"proof", Path("none.png"), "--icc", kPrinterIcc, "-o", output}), 1);
    EXPECT_THAT(err_, HasSubstr("none.png can't be opened"));
    EXPECT_EQ(Run({"proof", art, "-o", output}), 2);
    EXPECT_THAT(err_, HasSubstr("proof: --icc is required"));
    scratch_.Write("cut.png", ReadBytes(art).substr(0, 60));
    EXPECT_EQ(Run({"proof", Path("cut.png"), "--icc", kPrinterIcc, "-o", output}), 1);
    EXPECT_THAT(err_, HasSubstr("cut.png is a damaged PNG file"));
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("art.png", "cut.png"));
}

}  // namespace
#endif

}  // namespace orvex::tools::profile
