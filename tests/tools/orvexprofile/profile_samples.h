// Profiles for tests, and the colors that previews show. Every entry of a sample is another ink value, so
// that a misplaced one shows.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "driver/color/ink.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/print_pictures.h"
#include "tools/orvexprofile/profile.h"
#include "tools/orvexprofile/profile_writer.h"

namespace orvex::tools::profile {

// ICC profiles of a printer and a screen, installed by Debian's libgs-common.
constexpr char kPrinterIcc[] = "/usr/share/color/icc/ghostscript/default_cmyk.icc";
constexpr char kScreenIcc[] = "/usr/share/color/icc/ghostscript/srgb.icc";

// Returns an ink value that no other color has in the same variant, and that is never the "not computed"
// mark.
inline uint32_t SampleInks(uint32_t color, bool at600) {
    return color << 8 | (at600 ? 0x11 : 0x22);
}

inline InkSource SampleSource(bool at600) {
    return [at600](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
        std::transform(colors.data(), colors.data() + colors.size(), inks.data(),
                       [at600](uint32_t color) { return SampleInks(color, at600); });
    };
}

inline Profile SampleProfile(int version) {
    Profile profile;
    profile.version = version;
    profile.name = "Sample";
    profile.codes = ResolutionCodes{-1, 5};
    profile.at600 = SampleVariant(version, SampleSource(true));
    profile.other = SampleVariant(version, SampleSource(false));
    return profile;
}

// Returns a profile of version 5 without any ink.
inline Profile PaperProfile() {
    Profile profile;
    profile.name = "Paper";
    profile.at600.assign(LayoutOf(5).Entries(), 0);
    profile.other = profile.at600;
    return profile;
}

// Returns the file of a profile of version 5 with these tags, and with paper for colors.
inline std::string FileWithTags(const std::string& tags, int version = 5) {
    return ProfileBytes(version, TagArea(tags), std::string(ColorsSize(5), '\0'));
}

// Returns the color that a preview shows for an ink value, as red, green and blue.
inline std::vector<int> Shown(uint32_t inks) {
    const Rgb color = InkModelOf(PrintVariant::kOther).OnPaper(inks);
    return {color.red, color.green, color.blue};
}

}  // namespace orvex::tools::profile
