// Colour profile files: the loader and the catalogue read the tags alike, as the plain definition has them; a
// profile that is taken fills the whole cache, one that is refused leaves the generic conversion.

#include <cstring>

#include "color/color_cache.h"
#include "color/generic_conversion.h"
#include "color/profile_catalogue.h"
#include "color/profile_file.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
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

// Flags of an input's first byte; a whole load fills all of the cache when it fails, and is rare for that.
constexpr uint8_t kRaw = 0x80;
constexpr uint8_t kLarge = 0x40;  // with the colours of version 3 or 4
constexpr uint8_t kWholeLoad = 0x3F;

// The file of an input: its own bytes, or its tags between a fitting header and colours.
std::string FileOf(uint8_t flags, FuzzInput& input) {
    if (flags & kRaw) return std::string(input.RestAsText());
    const int version = flags & kLarge ? 3 + (input.Byte() & 1) : 5;
    const auto areaLength = input.Number<uint16_t>();
    const std::string area = TagArea(input.RestAsText(), areaLength);
    static const std::string grid = GridColors(ProfileInk);
    const std::string colors = flags & kLarge ? std::string(ColorsSize(version), '\x5A') : grid;
    return ProfileBytes(version, area, colors);
}

void CheckColors(int32_t version, bool at600Dpi) {
    for (int red = 0; red < kGridSteps; ++red) {
        for (int blue = 0; version == 5 && blue < kGridSteps; ++blue) {
            const uint32_t color = ColorIndex(GridValue(red), GridValue(7), GridValue(blue));
            REQUIRE(g_colorCache[color] == ProfileInk(color, at600Dpi));
        }
    }
    for (uint32_t color = 1; color < kCacheEntries; color += kSampleStep) {
        const bool stored = version != 5 && plain::IsAllEven(color);
        const bool onGrid = ((color & 0xFF) % 16 == 0 || (color & 0xFF) == 255);
        if (stored) REQUIRE(g_colorCache[color] == 0x5A5A5A5A);
        if (version == 3 && !stored) REQUIRE(g_colorCache[color] == 0);
        if (version == 4 && !stored) REQUIRE(g_colorCache[color] == kNotComputed);
        if (version == 5 && !onGrid) REQUIRE(g_colorCache[color] == kNotComputed);
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
    const uint8_t flags = choices.Byte();
    const bool at600Dpi = choices.Flag();
    const std::string file = FileOf(flags, choices);
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
    if (version >= 3 && !(flags & kRaw)) CheckColors(version, at600Dpi);
    if ((flags & kWholeLoad) == kWholeLoad) CheckWholeLoad(path, at600Dpi, version);

    const TagWalk catalogues = WalkTags(file, kCatalogueName, false);
    const std::string shown = CatalogueName();
    REQUIRE(shown == AsShown(catalogues.name.empty() ? "fuzz.zvp" : catalogues.name));
    REQUIRE(!loaders.accepted || !catalogues.accepted || loaders.name == catalogues.name);
    REQUIRE(watch.Open() == 0);
}

Seeds ProfileSeeds() {
    // Flags, resolution, length of the tag area, tags.
    const auto seed = [](char flags, char resolution, const std::string& tags, uint32_t length) {
        return std::string{flags, resolution} + Number16(length) + tags;
    };
    const std::string tags = NameTag("Paper") + ResolutionTag(3, 6);
    const auto length = static_cast<uint32_t>(tags.size() + 3);
    const std::string large{kLarge, 1, 0};
    return {
        seed(0, 1, tags, length),
        seed(0, 0, ResolutionTag(1, 2) + NameTag("") + NameTag(std::string(120, 'n')), 135),
        seed(0x3F, 0, tags, length + 1),
        seed(0x3F, 1, Tag(9, "x") + tags, length),
        seed(0, 0, NameTag("over") + Tag(1, "run"), 5),
        large + Number16(length) + tags,
        std::string("\x80\0ZVC\1", 6) + Number32(15) + "????" + TagArea(""),
    };
}
