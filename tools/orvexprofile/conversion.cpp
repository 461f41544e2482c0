#include "tools/orvexprofile/conversion.h"

#include "tools/orvexprofile/loaded_profile.h"

namespace orvex::tools::profile {

namespace {

// Returns the entries of the loaded profile as they are stored. A lookup would take an entry with the
// driver's mark for one that is not computed yet, and mix other inks for it.
Variant StoredEntries(int version) {
    Variant entries = LoadedEntries(version);
    for (uint32_t& inks : entries) inks = AvoidMark(inks);
    return entries;
}

}  // namespace

Profile ConvertProfile(const std::filesystem::path& path, int version) {
    Profile profile;
    profile.version = version;
    for (PrintVariant variant : kBothVariants) {
        const ProfileFacts facts = LoadAccepted(path, variant);
        profile.name = facts.Name();
        profile.codes = facts.Codes();
        (variant == PrintVariant::kAt600 ? profile.at600 : profile.other) =
            version == facts.version ? StoredEntries(version)
                                     : SampleVariant(version, LoadedColors(facts.version));
    }
    return profile;
}

ConversionLoss MeasureLoss(const std::filesystem::path& from, const std::filesystem::path& to,
                           PrintVariant variant, std::span<const uint32_t> colors) {
    const int version = LoadAccepted(from, variant).version;
    std::vector<uint32_t> meant(colors.size());
    LoadedColors(version)(colors, meant);
    const std::vector<uint32_t> before = PrintedInks(colors);
    LoadAccepted(to, variant);
    const std::vector<uint32_t> after = PrintedInks(colors);
    return {version, CompareInks(meant, after), CompareInks(before, after)};
}

std::string_view VersionLoss(int version) {
    switch (version) {
        case 3:
            return "Version 3 holds every second value of each component. The driver prints all other "
                   "colours without ink: 7 of 8, and all with a component of 255, pure red, green and blue "
                   "among them.";
        case 4:
            return "Version 4 holds every second value of each component. The driver prints the other "
                   "colours through its built-in conversion and with red and blue exchanged, those with a "
                   "component of 255 too: only colours with even components, and greys, keep their hue.";
        case 5:
            return "Version 5 holds 17 values of each component. The driver interpolates between them; finer "
                   "detail is lost.";
        default:
            return "";
    }
}

}  // namespace orvex::tools::profile
