// Color profile files in the profile tool: it judges every file as the plain definition, and so the driver,
// does. A profile that is converted to its own version and written again reads the same. A refusal names the
// file.

#include <algorithm>
#include <stdexcept>

#include "fuzz/fuzz_installation.h"
#include "fuzz/profile_input.h"
#include "fuzz/target.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/plain/driver/profile_head.h"
#include "tests/plain/profile.h"
#include "tools/orvexprofile/conversion.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/profile_writer.h"

namespace orvex::fuzz {

using namespace tools::profile;
namespace {

constexpr uint64_t kMostBytes = 1 << 20;
constexpr PrintVariant kVariants[] = {PrintVariant::kAt600, PrintVariant::kOther};

std::string BeforeZero(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

// Requires that all tags lie within the file, those of a refused file too.
void CheckTags(const ProfileFacts& facts, std::string_view file, const std::string& name) {
    REQUIRE(facts.size == file.size());
    for (const TagFacts& tag : facts.tags) {
        REQUIRE(tag.data.size() <= tag.length);
        REQUIRE(file.substr(tag.offset + kTagHeaderSize, tag.data.size()) == tag.data);
    }
    REQUIRE(BeforeZero(facts.Name().value_or("")) == name);
}

Variant Loaded(const std::filesystem::path& path, PrintVariant variant) {
    const ProfileFacts facts = LoadAccepted(path, variant);
    Variant entries = LoadedEntries(facts.version);
    for (uint32_t& inks : entries) inks = AvoidMark(inks);
    return entries;
}

void CheckWrittenAgain(const std::filesystem::path& path, const ProfileFacts& facts) {
    const std::filesystem::path copy = path.parent_path() / "copy.zvp";
    const Profile profile = ConvertProfile(path, facts.version);
    WriteProfileFile(profile, copy);
    const ProfileFacts written = LoadIntoDriver(copy, PrintVariant::kOther);
    REQUIRE(written.Accepted());
    REQUIRE(written.size == FileSize(profile));
    REQUIRE(written.Name() == facts.Name());
    REQUIRE(written.Codes() == facts.Codes());
    for (const PrintVariant variant : kVariants) REQUIRE(Loaded(copy, variant) == Loaded(path, variant));
}

void CheckRefusal(const std::filesystem::path& path) {
    try {
        LoadAccepted(path, PrintVariant::kOther);
    } catch (const std::runtime_error& error) {
        REQUIRE(std::string_view(error.what()).find(path.string()) != std::string_view::npos);
        return;
    }
    REQUIRE(!"a refused file was loaded");
}

}  // namespace

void FuzzToolProfile(std::span<const uint8_t> input) {
    const ProfileInput profile = TakeProfile(input);
    if (profile.file.size > kMostBytes) return;  // comparing millions of entries takes too long
    const std::string file = profile.file.Beginning(kMostBytes);
    FuzzInstallation().Write("profiles/fuzz.zvp", file);
    const std::filesystem::path path = FuzzInstallation().Folder() / "profiles" / "fuzz.zvp";

    const plain::ProfileHead at600 = plain::ReadHead(profile.file, kLongestName + 1, true);
    const plain::ProfileHead other = plain::ReadHead(profile.file, kLongestName + 1, false);
    const ProfileFacts facts = LoadIntoDriver(path, PrintVariant::kOther);
    REQUIRE(facts.Accepted() == (at600.sound && plain::HoldsColors(file, at600.colorsAt)));
    CheckTags(facts, file, at600.name);
    if (!facts.Accepted()) {
        CheckRefusal(path);
        return;
    }
    const ResolutionCodes codes = facts.Codes().value_or(ResolutionCodes());
    REQUIRE(codes.at600 == at600.code && codes.other == other.code);
    REQUIRE(facts.dataOffset == at600.colorsAt);
    CheckWrittenAgain(path, facts);
}

Seeds ToolProfileSeeds() {
    const std::string tags = NameTag("Paper") + ResolutionTag(3, 6);
    const std::string unnamed = ResolutionTag('\x80', 0) + NameTag(std::string("zero\0inside", 11));
    // Entries that equal kNotComputed, in colors with a component of 255.
    const std::string marked =
        std::string(3, '\xFF') + std::string(2, '\0') + std::string(7, '\xFF') + "\1\2\3";
    return {
        ProfileSeed(kProfileWhole + 5, tags, tags.size() + 3, "\xFF\xFF\xFF\xFF\1\2\3"),
        ProfileSeed(kProfileWhole + 5, unnamed, unnamed.size() + 3),
        ProfileSeed(kProfileCut + 5, tags, tags.size() + 3, "0123"),
        ProfileSeed(kProfileCut, NameTag("over") + Tag(1, "run"), 5),
        ProfileSeed(kProfileCut, Tag(2, "abc"), 9),
        ProfileSeed(kProfileWhole + 5, tags, tags.size() + 3, marked, 0xFFFB0000),
        kProfileRaw + std::string("ZVC\5", 4) + Number32(18) + "????" + TagArea("\1\4"),
    };
}

}  // namespace orvex::fuzz
