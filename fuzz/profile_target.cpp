// Color profile files: the loader and the catalogue read the tags as the plain definition does. A profile
// that is taken fills the whole cache with its colors; one that is refused leaves the generic conversion in
// it.

#include <cstring>

#include "driver/color/color_cache.h"
#include "driver/profiles/profile_catalogue.h"
#include "driver/profiles/profile_file.h"
#include "driver/support/installation.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/profile_input.h"
#include "fuzz/target.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/plain/driver/profile_head.h"
#include "tests/plain/plain_tables.h"
#include "tests/plain/profile.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr WCHAR kFileName[] = L"fuzz.zvp";
constexpr size_t kLoaderName = 512;
constexpr size_t kCatalogueName = 100;

// Name and resolution code as the driver reads them from a profile.
struct NameAndCode {
    std::vector<char> name = std::vector<char>(kLoaderName, '\0');
    signed char code = 99;
};

// Writes a poison value into each row of blues, so that an entry that is not filled shows.
void SpoilCache() {
    constexpr uint32_t kStep = 251;
    for (uint32_t color = 0; color < kCacheEntries; color += kStep) g_colorCache[color] = 0x5A5A5A5A;
}

// Loads through zvc_load_profile, which always fills the cache.
void CheckLoad(const std::string& path, int32_t resolution, int32_t version, NameAndCode& head) {
    const int32_t kind =
        zvc_load_profile(path.c_str(), resolution, &head.code, head.name.data(), head.name.size());
    REQUIRE(kind == (version == 0 ? kEntries : version));
    REQUIRE(kind == g_cacheKind && g_profileLoaded == 1);
    if (version != 0) return;
    const plain::Table& generic = plain::GenericTable(resolution == kResolution600 ? 50 : 100);
    REQUIRE(memcmp(g_colorCache, generic.data(), sizeof g_colorCache) == 0);
}

// Reads without the loader, so that a refused file does not cost a generic conversion.
void CheckRead(const std::string& path, int32_t resolution, int32_t version, NameAndCode& head) {
    REQUIRE(ReadProfile(path.c_str(), head.name.data(), head.name.size(), resolution == kResolution600,
                        g_colorCache, &head.code) == version);
}

// Returns the name that the catalogue shows, as narrow text.
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

// Returns a name after its way through the code page and back: it may hold bytes that are no characters.
std::string AsShown(const std::string& name) {
    WCHAR wide[512];
    char narrow[512];
    NarrowText(narrow, sizeof narrow, {wide, WidenText(wide, 512, name)});
    return narrow;
}

}  // namespace

void FuzzProfile(std::span<const uint8_t> input) {
    const ProfileInput profile = TakeProfile(input);
    const plain::SparseFile& file = profile.file;
    constexpr int32_t kAskedResolutions[] = {kResolution600, kResolution300, kResolution600,
                                             kResolutionOther};
    const int32_t resolution = kAskedResolutions[file.size % 4];
    const bool at600Dpi = resolution == kResolution600;
    const std::string path = (FuzzInstallation().Folder() / "profiles" / "fuzz.zvp").string();
    std::filesystem::create_directories(FuzzInstallation().Folder() / "profiles");
    file.Write(path);
    const FileWatch watch;

    const plain::ProfileHead loaders = plain::ReadHead(file, kLoaderName, at600Dpi);
    const uint8_t stated = loaders.sound ? loaders.version : uint8_t{0};
    const uint8_t version = plain::HoldsColors(stated, file.size - loaders.colorsAt) ? stated : uint8_t{0};
    if (profile.rare || version != 0) SpoilCache();
    NameAndCode head;
    (profile.rare ? CheckLoad : CheckRead)(path, resolution, version, head);
    REQUIRE(head.code == loaders.code);
    REQUIRE(std::string_view(head.name.data()) == loaders.name);
    REQUIRE(watch.Open() == 0);
    if (version != 0) {
        REQUIRE(plain::IsCacheOf(file, version, loaders.colorsAt, at600Dpi, g_colorCache));
    }

    const plain::ProfileHead catalogues = plain::ReadHead(file, kCatalogueName, false);
    const std::string shown = CatalogueName();
    REQUIRE(shown == AsShown(catalogues.name.empty() ? "fuzz.zvp" : catalogues.name));
    REQUIRE(!loaders.sound || !catalogues.sound || loaders.name == catalogues.name);
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
    // Inputs for the loader: the colors of every version at both resolutions, and refused files.
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
