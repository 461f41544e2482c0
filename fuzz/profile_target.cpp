// Colour profile files: the loader and the catalogue read the tags alike, as the plain definition has them; a
// profile that is taken fills the whole cache, one that is refused leaves the generic conversion.

#include <cstring>

#include "color/color_cache.h"
#include "color/generic_conversion.h"
#include "color/profile_catalogue.h"
#include "color/profile_file.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/profile_input.h"
#include "fuzz/profile_model.h"
#include "fuzz/target.h"
#include "support/installation.h"
#include "support/text.h"
#include "tests/color/file_watch.h"
#include "tests/color/profile_bytes.h"

namespace {

constexpr WCHAR kFileName[] = L"fuzz.zvp";
constexpr size_t kLoaderName = 512;
constexpr size_t kCatalogueName = 100;
constexpr uint32_t kSampleStep = 4093;  // a prime, so that samples meet even and odd colours of each axis

// The entry of a grid point in a file's colours: blue slowest, red fastest, the variant for 600 dpi first.
uint32_t GridEntry(std::string_view file, size_t colorsAt, bool at600Dpi, int red, int green, int blue) {
    const auto point = static_cast<size_t>((blue * kGridSteps + green) * kGridSteps + red);
    uint32_t inks = 0;
    memcpy(&inks, file.data() + colorsAt + (at600Dpi ? 0 : kGridVariantSize) + point * sizeof inks,
           sizeof inks);
    return inks;
}

void CheckGrid(std::string_view file, size_t colorsAt, bool at600Dpi) {
    for (int blue = 0; blue < kGridSteps; ++blue) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int red = 0; red < kGridSteps; ++red) {
                const uint32_t color = ColorIndex(GridValue(red), GridValue(green), GridValue(blue));
                REQUIRE(g_colorCache[color] == GridEntry(file, colorsAt, at600Dpi, red, green, blue));
            }
        }
    }
}

// The colours between the grid points wait for their computation; of versions 3 and 4, whose colours are all
// alike, those with an odd component do.
void CheckSamples(int32_t version, std::string_view file) {
    const uint32_t stored = version == 5 ? 0 : static_cast<uint8_t>(file.back()) * 0x01010101u;
    for (uint32_t color = 1; color < kCacheEntries; color += kSampleStep) {
        const bool onGrid = (color & 0xFF) % 16 == 0 || (color & 0xFF) == 255;
        if (version == 5 && onGrid) continue;
        const uint32_t missing = version == 3 ? 0 : kNotComputed;
        REQUIRE(g_colorCache[color] == (version != 5 && plain::IsAllEven(color) ? stored : missing));
    }
}

void CheckWholeLoad(const std::string& path, bool at600Dpi, int32_t version) {
    char name[kLoaderName] = "asked";
    signed char code = 99;
    const int32_t kind =
        zvc_load_profile(path.c_str(), at600Dpi ? kResolution600 : kResolution300, &code, name, sizeof name);
    REQUIRE(kind == g_cacheKind && g_profileLoaded == 1);
    REQUIRE(kind == (version == 0 ? kEntries : version));
    if (version != 0) return;
    for (uint32_t color = 0; color < kCacheEntries; color += kSampleStep) {
        const auto component = [color](int shift) { return static_cast<uint8_t>(color >> shift); };
        REQUIRE(g_colorCache[color] == GenericInkConversion(component(16), component(8), component(0),
                                                            at600Dpi ? kHalfInk : kFullInk));
    }
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
    FuzzInput choices(input);
    const ProfileInput profile = TakeProfile(choices);
    const std::string& file = profile.file;
    const bool at600Dpi = file.size() % 2 == 0;
    FuzzInstallation().Write("profiles/fuzz.zvp", file);
    const std::string path = (FuzzInstallation().Folder() / "profiles" / "fuzz.zvp").string();
    const FileWatch watch;

    const TagWalk loaders = WalkTags(file, kLoaderName, at600Dpi);
    std::vector<char> name(kLoaderName, '\0');
    signed char code = 99;
    const int32_t version =
        ReadProfile(path.c_str(), name.data(), name.size(), at600Dpi, g_colorCache, &code);
    REQUIRE(version == 0 || (loaders.accepted && version == file[3]));
    REQUIRE((version != 0) == (loaders.accepted && HoldsColors(file, loaders.colorsAt)));
    REQUIRE(code == loaders.code);
    REQUIRE(std::string_view(name.data()) == loaders.name);
    REQUIRE(watch.Open() == 0);
    if (version == 5) CheckGrid(file, loaders.colorsAt, at600Dpi);
    if (version >= 3) CheckSamples(version, file);
    if (profile.colors == ProfileColors::WholeLoad) CheckWholeLoad(path, at600Dpi, version);

    const TagWalk catalogues = WalkTags(file, kCatalogueName, false);
    const std::string shown = CatalogueName();
    REQUIRE(shown == AsShown(catalogues.name.empty() ? "fuzz.zvp" : catalogues.name));
    REQUIRE(!loaders.accepted || !catalogues.accepted || loaders.name == catalogues.name);
    REQUIRE(watch.Open() == 0);
}

Seeds ProfileSeeds() {
    const std::string tags = NameTag("Paper") + ResolutionTag(3, 6);
    const size_t length = tags.size() + 3;
    const std::string names = ResolutionTag(1, 2) + NameTag("") + NameTag(std::string(120, 'n'));
    return {
        ProfileSeed(kProfileCut, tags, length),
        ProfileSeed(kProfileCut | 6 << 3, names, names.size() + 3, "0123"),
        ProfileSeed(kProfileCut | 1 << 3, NameTag("over") + Tag(1, "run"), 5),
        ProfileSeed(kProfileCut, tags, 3, NameTag(std::string(511, 'n')) + NameTag(std::string(512, 'n'))),
        ProfileSeed(kProfileGrid, tags, length, "\xFF\xFF\xFF\xFF\1\2\3"),
        kProfileRaw + std::string("ZVC\1", 4) + Number32(15) + "????" + TagArea(""),
    };
}

Seeds SlowProfileSeeds() {
    const std::string tags = NameTag("Paper") + ResolutionTag(3, 6);
    const size_t length = tags.size() + 3;
    return {
        ProfileSeed(kProfileHalfGridEntries, tags, length),
        ProfileSeed(kProfileHalfGridPlanes, NameTag("P") + tags, length + 4),
        ProfileSeed(kProfileWholeLoad, tags, length, "0123"),
        ProfileSeed(kProfileWholeLoad, tags, length + 1),
    };
}
