#include "tools/orvexprofile/profile_writer.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

#include "driver/color/ink.h"
#include "tools/common/whole_file.h"

namespace orvex::tools::profile {

namespace {

// Returns the lowest `size` bytes of a number, the lowest first.
std::string Bytes(size_t number, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

std::string Tag(int id, const std::string& data) {
    return Bytes(static_cast<size_t>(id), 1) + Bytes(data.size(), 2) + data;
}

std::string TagArea(const Profile& profile) {
    std::string tags;
    if (profile.name) tags += Tag(kNameTag, *profile.name);
    if (profile.codes) {
        tags += Tag(kResolutionTag,
                    {static_cast<char>(profile.codes->other), static_cast<char>(profile.codes->at600)});
    }
    return Bytes(0, 1) + Bytes(kTagHeaderSize + tags.size(), 2) + tags;
}

// Entries are stored as they are in memory.
static_assert(std::endian::native == std::endian::little);

void AppendEntries(const Variant& variant, std::string& file) {
    file.append(reinterpret_cast<const char*>(variant.data()), 4 * variant.size());
}

void AppendPlanes(const Variant& variant, std::string& file) {
    for (int ink = kInks - 1; ink >= 0; --ink) {
        const size_t plane = file.size();
        file.resize(plane + variant.size());
        std::transform(variant.data(), variant.data() + variant.size(), file.data() + plane,
                       [ink](uint32_t inks) { return static_cast<char>(InkAmount(inks, ink)); });
    }
}

void AppendVariant(const VersionLayout& layout, const Variant& variant, std::string& file) {
    if (layout.planes) return AppendPlanes(variant, file);
    AppendEntries(layout.blueFirst ? SwapAxes(layout.steps, variant) : variant, file);
}

void CheckLength(std::string_view name, size_t least) {
    if (name.size() < least || name.size() > kLongestName) {
        throw std::invalid_argument("a profile's name has 1 to " + std::to_string(kLongestName) +
                                    " characters, not " + std::to_string(name.size()));
    }
}

void CheckVariant(const VersionLayout& layout, const Variant& variant, const std::string& which) {
    if (variant.size() != layout.Entries()) {
        throw std::invalid_argument("the variant for " + which + " has " + std::to_string(variant.size()) +
                                    " entries instead of " + std::to_string(layout.Entries()));
    }
    const auto mark = std::find(variant.begin(), variant.end(), kNotComputed);
    if (mark != variant.end()) {
        throw std::invalid_argument("entry " + std::to_string(mark - variant.begin()) +
                                    " of the variant for " + which +
                                    " has all four inks full, which the driver takes as not computed");
    }
}

void CheckProfile(const Profile& profile) {
    if (profile.version < kFirstVersion || profile.version > kLastVersion) {
        throw std::invalid_argument("profiles have the versions 1 to 5, not " +
                                    std::to_string(profile.version));
    }
    if (!profile.name && !profile.codes) {
        throw std::invalid_argument(
            "a profile needs a name or resolution codes: the driver reads at least one tag");
    }
    if (profile.name) CheckLength(*profile.name, 0);
    CheckVariant(LayoutOf(profile.version), profile.at600, NameOf(PrintVariant::kAt600));
    CheckVariant(LayoutOf(profile.version), profile.other, NameOf(PrintVariant::kOther));
}

}  // namespace

void CheckProfileName(std::string_view name) {
    CheckLength(name, 1);
    const auto printable = [](char character) { return character >= ' ' && character <= '~'; };
    if (!std::all_of(name.begin(), name.end(), printable)) {
        throw std::invalid_argument(
            "a profile's name holds printable ASCII characters only; names in other scripts belong into "
            "profilenames.inf");
    }
}

size_t FileSize(const Profile& profile) {
    return kProfileHeaderSize + TagArea(profile).size() + 2 * LayoutOf(profile.version).VariantSize();
}

std::string EncodeProfile(const Profile& profile) {
    CheckProfile(profile);
    std::string file;
    file.reserve(FileSize(profile));
    file += kProfileMark;
    file += Bytes(static_cast<size_t>(profile.version), 1) + Bytes(FileSize(profile), 4) + Bytes(0, 4);
    file += TagArea(profile);
    const VersionLayout& layout = LayoutOf(profile.version);
    AppendVariant(layout, profile.at600, file);
    AppendVariant(layout, profile.other, file);
    return file;
}

void WriteProfileFile(const Profile& profile, const std::filesystem::path& path) {
    WriteWholeFile(path, EncodeProfile(profile));
}

}  // namespace orvex::tools::profile
