// Profiles for tests: every entry is another ink value, so that one in the wrong place shows.
#pragma once

#include <filesystem>
#include <sstream>
#include <string>

#include "tools/orvexprofile/driver_colors.h"
#include "tools/orvexprofile/ink.h"
#include "tools/orvexprofile/profile.h"
#include "tools/orvexprofile/profile_writer.h"

namespace orvex::tools::profile {

constexpr PrintVariant kBothVariants[] = {PrintVariant::kAt600, PrintVariant::kOther};

// An ink value that no other colour has in the same variant, and that is never the "not computed" mark.
inline uint32_t SampleInks(uint32_t color, bool at600) {
    return color << 8 | (at600 ? 0x11 : 0x22);
}

inline InkSource SampleSource(bool at600) {
    return [at600](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
        for (size_t i = 0; i < colors.size(); ++i) inks[i] = SampleInks(colors[i], at600);
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

// A profile of version 5 without ink but for what a test puts in.
inline Profile PaperProfile() {
    Profile profile;
    profile.name = "Paper";
    profile.at600.assign(LayoutOf(5).Entries(), 0);
    profile.other = profile.at600;
    return profile;
}

inline std::string ProfileBytes(const Profile& profile) {
    std::ostringstream out;
    WriteProfile(profile, out);
    return out.str();
}

// `size` bytes of a number, the lowest first.
inline std::string LittleEndianBytes(uint32_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<char>(value >> (8 * i)));
    return bytes;
}

// A profile file of version 5 put together by hand: the tags as given, paper for colours.
inline std::string FileWithTags(const std::string& tags, int version = 5) {
    const std::string data(2 * LayoutOf(5).VariantSize(), '\0');
    const std::string area = '\0' + LittleEndianBytes(static_cast<uint32_t>(3 + tags.size()), 2) + tags;
    const uint32_t size = static_cast<uint32_t>(12 + area.size() + data.size());
    return "ZVC" + std::string(1, static_cast<char>(version)) + LittleEndianBytes(size, 4) +
           LittleEndianBytes(0, 4) + area + data;
}

inline std::string Tag(int id, const std::string& data) {
    return std::string(1, static_cast<char>(id)) + LittleEndianBytes(static_cast<uint32_t>(data.size()), 2) +
           data;
}

}  // namespace orvex::tools::profile
