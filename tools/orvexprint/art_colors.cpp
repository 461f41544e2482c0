#include "tools/orvexprint/art_colors.h"

#ifdef ORVEX_LITTLE_CMS
#include <lcms2.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

namespace orvex::tools::print {

namespace {

constexpr RgbPrimaries kSrgb = {{0.3127, 0.3290}, {0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}};
constexpr double kSrgbGamma = 1 / 2.2;

bool Near(const Chromaticity& a, const Chromaticity& b) {
    return std::abs(a.x - b.x) < 0.002 && std::abs(a.y - b.y) < 0.002;
}

// Programs that write gamma and primaries beside sRGB colors use an exponent close to sRGB's curve.
bool AreSrgb(double gamma, const RgbPrimaries& primaries) {
    return std::abs(gamma - kSrgbGamma) < 0.01 && Near(primaries.white, kSrgb.white) &&
           Near(primaries.red, kSrgb.red) && Near(primaries.green, kSrgb.green) &&
           Near(primaries.blue, kSrgb.blue);
}

}  // namespace

#ifdef ORVEX_LITTLE_CMS

const char kColorsHelp[] = "Colours with an embedded profile, or gamma and primaries, become sRGB.";

namespace {

// The bytes of a pixel 0xAARRGGBB, of which a gray one needs only the first.
constexpr cmsUInt32Number kRgbPixel = TYPE_BGRA_8;
constexpr cmsUInt32Number kGrayPixel = COLORSPACE_SH(PT_GRAY) | EXTRA_SH(3) | CHANNELS_SH(1) | BYTES_SH(1);

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

// Returns whether the conversion changes colors by no more than its own rounding.
bool KeepsColors(const PictureReader::ColorConversion& convert) {
    constexpr uint32_t kStep = 51;
    constexpr int kRounding = 2;
    for (uint32_t color = 0; color < 6 * 6 * 6; ++color) {
        const uint32_t before = color / 36 * kStep << 16 | color / 6 % 6 * kStep << 8 | color % 6 * kStep;
        uint32_t after = before;
        convert(&after, 1);
        for (int shift = 0; shift < 24; shift += 8) {
            const int change =
                static_cast<int>(before >> shift & 0xFF) - static_cast<int>(after >> shift & 0xFF);
            if (std::abs(change) > kRounding) return false;
        }
    }
    return true;
}

// Returns the conversion to sRGB; a note if Little CMS can't make it.
ArtColors FromProfile(const Profile& profile, bool grayFile) {
    constexpr char kIgnored[] = "has a colour profile that can't be used, so its colours are taken for sRGB";
    if (!profile) return {nullptr, kIgnored};
    const bool gray = cmsGetColorSpace(profile.get()) == cmsSigGrayData;
    if (gray ? !grayFile : cmsGetColorSpace(profile.get()) != cmsSigRgbData) return {nullptr, kIgnored};
    const Profile srgb(cmsCreate_sRGBProfile());
    const std::shared_ptr<void> transform(
        cmsCreateTransform(profile.get(), gray ? kGrayPixel : kRgbPixel, srgb.get(), kRgbPixel,
                           INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION),
        [](void* made) {
            if (made != nullptr) cmsDeleteTransform(made);
        });
    if (!transform) return {nullptr, kIgnored};
    const PictureReader::ColorConversion convert = [transform](uint32_t* pixels, size_t count) {
        cmsDoTransform(transform.get(), pixels, pixels, static_cast<cmsUInt32Number>(count));
    };
    // A gray profile is judged by its grays alone.
    if (!gray && KeepsColors(convert)) return {};
    return {convert, {}};
}

Profile ProfileOf(double gamma, const RgbPrimaries& primaries) {
    const auto point = [](const Chromaticity& c) { return cmsCIExyY{c.x, c.y, 1}; };
    const cmsCIExyY white = point(primaries.white);
    const cmsCIExyYTRIPLE colors = {point(primaries.red), point(primaries.green), point(primaries.blue)};
    const std::unique_ptr<cmsToneCurve, void (*)(cmsToneCurve*)> curve(cmsBuildGamma(nullptr, 1 / gamma),
                                                                       &cmsFreeToneCurve);
    if (!curve) return nullptr;
    cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
    return Profile(cmsCreateRGBProfile(&white, &colors, curves));
}

ArtColors FromIcc(const std::vector<uint8_t>& icc, bool grayFile) {
    return FromProfile(Profile(cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size()))),
                       grayFile);
}

ArtColors FromPrimaries(double gamma, const RgbPrimaries& primaries) {
    return FromProfile(ProfileOf(gamma, primaries), false);
}

}  // namespace

#else

const char kColorsHelp[] =
    "Colours are taken for sRGB: an embedded profile, or gamma and primaries, are ignored, which the command "
    "says.";

namespace {

// Returns whether the profile's description names sRGB, in one byte a letter or in two.
bool NamesSrgb(const std::vector<uint8_t>& icc) {
    using namespace std::string_view_literals;
    for (const std::string_view name : {"sRGB"sv, "s\0R\0G\0B"sv}) {
        if (std::search(icc.begin(), icc.end(), name.begin(), name.end()) != icc.end()) return true;
    }
    return false;
}

ArtColors FromIcc(const std::vector<uint8_t>& icc, bool) {
    if (NamesSrgb(icc)) return {};
    return {nullptr, "has a colour profile, which is ignored: its colours are taken for sRGB"};
}

ArtColors FromPrimaries(double, const RgbPrimaries&) {
    return {nullptr, "states gamma and primaries, which are ignored: its colours are taken for sRGB"};
}

}  // namespace

#endif

ArtColors ColorsOf(const EmbeddedColors& embedded) {
    if (!embedded.profile.empty()) return FromIcc(embedded.profile, embedded.grayFile);
    if (embedded.srgb || !embedded.gamma || !embedded.primaries) return {};
    if (*embedded.gamma <= 0 || AreSrgb(*embedded.gamma, *embedded.primaries)) return {};
    return FromPrimaries(*embedded.gamma, *embedded.primaries);
}

}  // namespace orvex::tools::print
