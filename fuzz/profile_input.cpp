#include "fuzz/profile_input.h"

#include "tests/color/profile_bytes.h"

namespace {

constexpr uint8_t kHalfGridByte = 0x5A;  // all of the colours of versions 3 and 4

ProfileColors ColorsOf(uint8_t choice) {
    if (choice == kProfileHalfGridEntries || choice == kProfileHalfGridPlanes) return ProfileColors::HalfGrid;
    if (choice == kProfileWholeLoad) return ProfileColors::WholeLoad;
    return (choice & 7) == kProfileGrid ? ProfileColors::Grid : ProfileColors::Cut;
}

// The colours of version 5 with the given bytes in front and, of the other variant, behind.
std::string GridWith(std::string_view bytes) {
    static const std::string grid = GridColors(ProfileInk);
    std::string colors = grid;
    bytes = bytes.substr(0, kGridVariantSize);
    colors.replace(0, bytes.size(), bytes);
    return colors.replace(colors.size() - bytes.size(), bytes.size(), bytes);
}

}  // namespace

ProfileInput TakeProfile(FuzzInput& input) {
    const uint8_t choice = input.Byte();
    ProfileInput profile = {ColorsOf(choice), ""};
    if (choice & 0x80) {
        profile.file = input.RestAsText();
        return profile;
    }
    const auto areaLength = input.Number<uint16_t>();
    const std::string_view tags = input.TakeText(input.Number<uint16_t>());
    const std::string_view rest = input.RestAsText();
    int version = 5;
    std::string colors;
    if (profile.colors == ProfileColors::Cut) {
        version = choice >> 3;
        colors = rest;
    } else if (profile.colors == ProfileColors::HalfGrid) {
        version = choice == kProfileHalfGridEntries ? 3 : 4;
        colors.assign(ColorsSize(version), static_cast<char>(kHalfGridByte));
    } else {
        colors = GridWith(rest);
    }
    profile.file = ProfileBytes(version, TagArea(tags, areaLength), colors);
    return profile;
}

std::string ProfileSeed(char choice, const std::string& tags, size_t areaLength, const std::string& colors) {
    return choice + Number16(static_cast<uint32_t>(areaLength)) +
           Number16(static_cast<uint32_t>(tags.size())) + tags + colors;
}
