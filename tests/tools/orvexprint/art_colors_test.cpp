#include "tools/orvexprint/art_colors.h"

#include <gmock/gmock.h>

#include <cstring>

#ifndef _WIN32
#include <lcms2.h>
#endif

namespace orvex::tools::print {

using testing::HasSubstr;

namespace {

constexpr RgbPrimaries kSrgbPrimaries = {{0.3127, 0.3290}, {0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}};
// With a green as on paper that is made for wide gamuts.
constexpr RgbPrimaries kWidePrimaries = {{0.3127, 0.3290}, {0.64, 0.33}, {0.21, 0.71}, {0.15, 0.06}};

std::vector<uint8_t> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

}  // namespace

TEST(ArtColors, AreSrgbUnlessTheFileSaysOtherwise) {
    for (const EmbeddedColors& embedded :
         {EmbeddedColors{}, EmbeddedColors{.srgb = true},
          EmbeddedColors{.srgb = true, .gamma = 1.0, .primaries = kWidePrimaries},
          EmbeddedColors{.gamma = 0.45455, .primaries = kSrgbPrimaries}, EmbeddedColors{.gamma = 1.0},
          EmbeddedColors{.primaries = kWidePrimaries},
          EmbeddedColors{.gamma = 0.0, .primaries = kWidePrimaries}}) {
        const ArtColors colors = ColorsOf(embedded);
        EXPECT_FALSE(colors.toSrgb);
        EXPECT_EQ(colors.note, "");
    }
}

// Little CMS is there in the native build only.
#ifdef _WIN32

TEST(ArtColors, AreSaidToBeIgnored) {
    EXPECT_EQ(ColorsOf({.profile = Bytes("Wide gamut")}).note,
              "has a colour profile, which is ignored: its colours are taken for sRGB");
    EXPECT_EQ(ColorsOf({.gamma = 0.45455, .primaries = kWidePrimaries}).note,
              "states gamma and primaries, which are ignored: its colours are taken for sRGB");
    EXPECT_EQ(ColorsOf({.profile = Bytes("this is sRGB IEC61966-2.1")}).note, "");
    EXPECT_EQ(ColorsOf({.profile = Bytes({"\0s\0R\0G\0B\0", 10})}).note, "");
    EXPECT_THAT(kColorsHelp, HasSubstr("ignored"));
}

#else

namespace {

uint32_t Converted(const ArtColors& colors, uint32_t pixel) {
    if (colors.toSrgb) colors.toSrgb(&pixel, 1);
    return pixel;
}

std::vector<uint8_t> Saved(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<uint8_t> bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

std::vector<uint8_t> GrayProfile(double gamma) {
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    const std::vector<uint8_t> bytes = Saved(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    return bytes;
}

}  // namespace

TEST(ArtColors, StayAsTheyAreIfTheirProfileIsSrgb) {
    const ArtColors colors = ColorsOf({.profile = Saved(cmsCreate_sRGBProfile())});
    EXPECT_FALSE(colors.toSrgb);
    EXPECT_EQ(colors.note, "");
}

TEST(ArtColors, BecomeSrgbFromGammaAndPrimaries) {
    const ArtColors wide = ColorsOf({.gamma = 0.45455, .primaries = kWidePrimaries});
    EXPECT_EQ(wide.note, "");
    EXPECT_EQ(Converted(wide, 0x80000000), 0x80000000u) << "black stays black, and alpha what it is";
    EXPECT_EQ(Converted(wide, 0xFFFFFFFF), 0xFFFFFFFFu);
    EXPECT_EQ(Converted(wide, 0xFF00C000) >> 16 & 0xFF, 0u);
    EXPECT_GT(Converted(wide, 0xFF00C000) >> 8 & 0xFF, 0xC0u) << "a green that sRGB has to go further for";
    const ArtColors linear = ColorsOf({.gamma = 1.0, .primaries = kSrgbPrimaries});
    EXPECT_NEAR(Converted(linear, 0xFF373737) & 0xFF, 128, 1) << "a fifth of the light";
}

TEST(ArtColors, BecomeSrgbFromAProfile) {
    const ArtColors gray = ColorsOf({.profile = GrayProfile(1.0), .grayFile = true});
    EXPECT_NEAR(Converted(gray, 0x40373737) & 0xFF, 128, 1);
    EXPECT_EQ(Converted(gray, 0x40000000), 0x40000000u);
    EXPECT_EQ(Converted(gray, 0xFFFFFFFF), 0xFFFFFFFFu);
}

TEST(ArtColors, AreTakenForSrgbIfTheirProfileCannotBeUsed) {
    const std::vector<uint8_t> lab = Saved(cmsCreateLab4Profile(nullptr));
    for (const EmbeddedColors& embedded :
         {EmbeddedColors{.profile = Bytes("no profile")}, EmbeddedColors{.profile = lab},
          EmbeddedColors{.profile = GrayProfile(2.2)}}) {
        const ArtColors colors = ColorsOf(embedded);
        EXPECT_FALSE(colors.toSrgb);
        EXPECT_EQ(colors.note, "has a colour profile that can't be used, so its colours are taken for sRGB");
    }
    EXPECT_THAT(kColorsHelp, HasSubstr("become sRGB"));
}

#endif

}  // namespace orvex::tools::print
