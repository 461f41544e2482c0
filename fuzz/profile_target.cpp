// Color profile files: the loader and the catalogue read the tags alike, as the plain definition has them; a
// profile that is taken fills the whole cache as its colors say, one that is refused leaves the generic
// conversion in all of it.

#include "driver/color/color_cache.h"
#include "driver/profiles/profile_catalogue.h"
#include "driver/profiles/profile_file.h"
#include "driver/support/installation.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/generic_cache.h"
#include "fuzz/profile_input.h"
#include "fuzz/profile_model.h"
#include "fuzz/target.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/driver/profiles/profile_bytes.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr WCHAR kFileName[] = L"fuzz.zvp";
constexpr size_t kLoaderName = 512;
constexpr size_t kCatalogueName = 100;
constexpr uint64_t kBeginning = 65536;  // more than the tags of any input take

// What is read out of a profile apart from its colors.
struct ReadHead {
    std::vector<char> name = std::vector<char>(kLoaderName, '\0');
    signed char code = 99;
};

// Leaves something in each row of blues that no profile has there, so that what is not filled shows.
void SpoilCache() {
    constexpr uint32_t kStep = 251;
    for (uint32_t color = 0; color < kCacheEntries; color += kStep) g_colorCache[color] = 0x5A5A5A5A;
}

// Through the loader, which always fills the cache.
void CheckLoad(const std::string& path, int32_t resolution, int32_t version, ReadHead& head) {
    const int32_t kind =
        zvc_load_profile(path.c_str(), resolution, &head.code, head.name.data(), head.name.size());
    REQUIRE(kind == (version == 0 ? kEntries : version));
    REQUIRE(kind == g_cacheKind && g_profileLoaded == 1);
    REQUIRE(version != 0 || IsGenericCache(g_colorCache, resolution == kResolution600 ? 50 : 100));
}

// Through the reader alone: a refusal then costs no filling of the cache.
void CheckRead(const std::string& path, int32_t resolution, int32_t version, ReadHead& head) {
    REQUIRE(ReadProfile(path.c_str(), head.name.data(), head.name.size(), resolution == kResolution600,
                        g_colorCache, &head.code) == version);
}

// The name that the catalogue shows, as narrow text.
std::string CatalogueName() {
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    HeapArray<WCHAR> names;
    size_t bytes = 0;
    REQUIRE(GetQRVProfileName(kFileName, &names, &bytes, folder.get(), L"[none]") == 1);
    REQUIRE(bytes == 2 * (TextLength(names.get()) + 1));
    char narrow[512];
    NarrowText(narrow, sizeof narrow, {names.get(), TextLength(names.get())});
    return narrow;
}

// Through the code page and back: a name may hold bytes that are no characters.
std::string AsShown(const std::string& name) {
    WCHAR wide[512];
    char narrow[512];
    NarrowText(narrow, sizeof narrow, {wide, WidenText(wide, 512, name)});
    return narrow;
}

}  // namespace

void FuzzProfile(std::span<const uint8_t> input) {
    const ProfileInput profile = TakeProfile(input);
    const SparseFile& file = profile.file;
    const std::string beginning = file.Beginning(kBeginning);
    // The job's resolution: 600 dpi for every other size, one of the others for the rest.
    constexpr int32_t kAskedResolutions[] = {kResolution600, kResolution300, kResolution600,
                                             kResolutionOther};
    const int32_t resolution = kAskedResolutions[file.size % 4];
    const bool at600Dpi = resolution == kResolution600;
    const std::string path = (FuzzInstallation().Folder() / "profiles" / "fuzz.zvp").string();
    std::filesystem::create_directories(FuzzInstallation().Folder() / "profiles");
    file.Write(path);
    const FileWatch watch;

    const TagWalk loaders = WalkTags(beginning, file.size, kLoaderName, at600Dpi);
    const auto stated = static_cast<uint8_t>(loaders.accepted ? beginning[3] : 0);
    const uint8_t version = HoldsColors(stated, file.size - loaders.colorsAt) ? stated : uint8_t{0};
    if (profile.rare || version != 0) SpoilCache();
    ReadHead head;
    (profile.rare ? CheckLoad : CheckRead)(path, resolution, version, head);
    REQUIRE(head.code == loaders.code);
    REQUIRE(std::string_view(head.name.data()) == loaders.name);
    REQUIRE(watch.Open() == 0);
    if (version != 0) CheckCache(file, version, loaders.colorsAt, at600Dpi);

    const TagWalk catalogues = WalkTags(beginning, file.size, kCatalogueName, false);
    const std::string shown = CatalogueName();
    REQUIRE(shown == AsShown(catalogues.name.empty() ? "fuzz.zvp" : catalogues.name));
    REQUIRE(!loaders.accepted || !catalogues.accepted || loaders.name == catalogues.name);
    REQUIRE(watch.Open() == 0);
}

Seeds ProfileSeeds() {
    const std::string tags = NameTag("Paper") + ResolutionTag(3, 6);
    const size_t length = tags.size() + 3;
    const std::string names = ResolutionTag(1, 2) + NameTag("") + NameTag(std::string(120, 'n'));
    Seeds seeds = {
        ProfileSeed(kProfileCut, tags, length),
        ProfileSeed(kProfileCut + 6, names, names.size() + 3, "0123"),
        ProfileSeed(kProfileCut + 1, NameTag("over") + Tag(1, "run"), 5),
        ProfileSeed(kProfileCut, tags, 3, NameTag(std::string(511, 'n')) + NameTag(std::string(512, 'n'))),
        ProfileSeed(kProfileWhole + 5, tags, length, "\xFF\xFF\xFF\xFF\1\2\3"),
        kProfileRaw + std::string("ZVC\1", 4) + Number32(15) + "????" + TagArea(""),
    };
    // Through the loader: every version's colors, of both resolutions, and refusals.
    for (int version = 1; version <= 5; ++version) {
        const std::string name = NameTag(std::string(static_cast<size_t>(version), 'n'));
        const uint32_t where = version == 2 ? 16777209 : 1000;  // the end of each plane
        seeds.push_back(
            RareSeed(ProfileSeed(kProfileWhole + version, name, name.size() + 3, "\1\2\3", where)));
    }
    seeds.push_back(RareSeed(ProfileSeed(kProfileCut + 5, tags, length, "even")));
    seeds.push_back(RareSeed(ProfileSeed(kProfileCut + 5, tags, length, "odd")));
    return seeds;
}

}  // namespace orvex::fuzz
