#include "tools/orvexprofile/profile_writer.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "tools/common/output_file.h"
#include "tools/orvexprofile/ink.h"

namespace orvex::tools::profile {

namespace {

class LittleEndianText {
  public:
    LittleEndianText& Byte(uint32_t value) {
        text_.push_back(static_cast<char>(value));
        return *this;
    }
    LittleEndianText& Word(uint32_t value) { return Byte(value).Byte(value >> 8); }
    LittleEndianText& Long(uint32_t value) { return Word(value).Word(value >> 16); }
    LittleEndianText& Text(std::string_view text) {
        text_ += text;
        return *this;
    }
    const std::string& Bytes() const { return text_; }

  private:
    std::string text_;
};

std::string TagArea(const Profile& profile) {
    LittleEndianText tags;
    if (profile.name) {
        tags.Byte(kNameTag).Word(static_cast<uint32_t>(profile.name->size())).Text(*profile.name);
    }
    if (profile.codes) {
        tags.Byte(kResolutionTag).Word(2);
        tags.Byte(static_cast<uint8_t>(profile.codes->other))
            .Byte(static_cast<uint8_t>(profile.codes->at600));
    }
    const std::string& bytes = tags.Bytes();
    return LittleEndianText()
        .Byte(0)
        .Word(static_cast<uint32_t>(kTagHeaderSize + bytes.size()))
        .Text(bytes)
        .Bytes();
}

void WriteEntries(const Variant& variant, std::ostream& out) {
    out.write(reinterpret_cast<const char*>(variant.data()),
              static_cast<std::streamsize>(4 * variant.size()));
}

void WritePlanes(const Variant& variant, std::ostream& out) {
    std::string plane(variant.size(), '\0');
    for (int ink = kInks - 1; ink >= 0; --ink) {
        std::transform(variant.begin(), variant.end(), plane.begin(),
                       [ink](uint32_t inks) { return static_cast<char>(InkAmount(inks, ink)); });
        out.write(plane.data(), static_cast<std::streamsize>(plane.size()));
    }
}

void WriteVariant(const VersionLayout& layout, const Variant& variant, std::ostream& out) {
    if (layout.planes) {
        WritePlanes(variant, out);
    } else {
        WriteEntries(layout.blueFirst ? SwapAxes(layout.steps, variant) : variant, out);
    }
}

void CheckLength(std::string_view name, size_t least) {
    if (name.size() < least || name.size() > kLongestName) {
        throw std::invalid_argument("a profile's name has 1 to " + std::to_string(kLongestName) +
                                    " characters, not " + std::to_string(name.size()));
    }
}

void CheckVariant(const VersionLayout& layout, const Variant& variant, const char* which) {
    if (variant.size() != layout.Entries()) {
        throw std::invalid_argument("the variant for " + std::string(which) + " has " +
                                    std::to_string(variant.size()) + " entries instead of " +
                                    std::to_string(layout.Entries()));
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
    CheckVariant(LayoutOf(profile.version), profile.at600, "600 dpi");
    CheckVariant(LayoutOf(profile.version), profile.other, "other resolutions");
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
    return kHeaderSize + TagArea(profile).size() + 2 * LayoutOf(profile.version).VariantSize();
}

void WriteProfile(const Profile& profile, std::ostream& out) {
    CheckProfile(profile);
    const std::string header = LittleEndianText()
                                   .Text("ZVC")
                                   .Byte(static_cast<uint32_t>(profile.version))
                                   .Long(static_cast<uint32_t>(FileSize(profile)))
                                   .Long(0)
                                   .Text(TagArea(profile))
                                   .Bytes();
    out.write(header.data(), static_cast<std::streamsize>(header.size()));
    const VersionLayout& layout = LayoutOf(profile.version);
    WriteVariant(layout, profile.at600, out);
    WriteVariant(layout, profile.other, out);
}

void WriteProfileFile(const Profile& profile, const std::filesystem::path& path) {
    CheckProfile(profile);
    OutputFile file(path);
    WriteProfile(profile, file.Stream());
    file.Complete();
}

}  // namespace orvex::tools::profile
