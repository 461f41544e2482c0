#include "driver/profiles/profile_reader.h"
#include "tests/driver/profiles/profile_fixture.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;

namespace {

class ProfileFile : public ProfileFixture {};

int32_t loadedWhileReading;
decltype(&ReadFile) originalRead;

BOOL WINAPI NoteAndRead(HANDLE file, LPVOID buffer, DWORD size, LPDWORD came, LPOVERLAPPED overlapped) {
    loadedWhileReading = g_profileLoaded;
    return originalRead(file, buffer, size, came, overlapped);
}

}  // namespace

TEST_F(ProfileFile, OfVersion1FillsEveryEntryAtBothResolutions) {
    ExpectEveryEntryLoaded(1, 0);
}

TEST_F(ProfileFile, OfVersion2FillsEveryEntryAtBothResolutions) {
    ExpectEveryEntryLoaded(2, 0);
}

TEST_F(ProfileFile, OfVersion3FillsTheEvenColorsAndLeavesTheOthersWithoutInk) {
    ExpectEveryEntryLoaded(3, 0);
}

TEST_F(ProfileFile, OfVersion4FillsTheEvenColorsAndLeavesTheOthersToBeComputed) {
    ExpectEveryEntryLoaded(4, kNotComputed);
}

TEST_F(ProfileFile, OfVersion5FillsTheGridAndLeavesTheOthersToBeComputed) {
    const std::string path = PathOf(SmallProfile(NameTag("Grid") + ResolutionTag(3, 6)));
    for (const int32_t resolution : {kResolution600, kResolution300, kResolutionOther}) {
        const bool at600Dpi = resolution == kResolution600;
        EXPECT_EQ(Load(path, resolution), 5);
        EXPECT_EQ(code_, at600Dpi ? 6 : 3);
        EXPECT_TRUE(SameForEveryColor(StoredEntry, [&](uint32_t color) {
            return plain::IsGridPoint(color) ? ProfileInk(color, at600Dpi) : kNotComputed;
        }));
    }
}

TEST_F(ProfileFile, OfVersion5StoresBlueSlowestAndRedFastest) {
    std::string colors = GridColors([](uint32_t, bool) { return 0u; });
    colors[4 * 1] = 11;            // the second entry: one step of red
    colors[4 * 17] = 22;           // after a run of reds: one step of green
    colors[4 * 17 * 17] = 33;      // after a run of greens: one step of blue
    colors[4 * (4913 - 1)] = 44;   // the last
    colors[4 * (4913 - 17)] = 55;  // red at its first step, the others at their last
    EXPECT_EQ(Load(PathOf(ProfileBytes(5, TagArea(NameTag("")), colors))), 5);
    EXPECT_EQ(g_colorCache[0x100000], 11u);
    EXPECT_EQ(g_colorCache[0x001000], 22u);
    EXPECT_EQ(g_colorCache[0x000010], 33u);
    EXPECT_EQ(g_colorCache[0xFFFFFF], 44u);
    EXPECT_EQ(g_colorCache[0x00FFFF], 55u);
}

TEST_F(ProfileFile, IsReadInWholeBlocks) {
    const std::string large = (folder_.Path() / "large.zvp").string();
    const std::string compact = PathOf(SmallProfile(NameTag("n")));
    WriteLargeProfile(large, 4, NameTag("n"));
    // One block with the head, then the colors of one variant: 19,652 bytes, or 8 MiB.
    static_assert(BlockReader::kBlock == 8192);
    for (const auto& [path, most] : {std::pair{compact, 1 + 3u}, std::pair{large, 1 + 1024u}}) {
        const FileWatch watch;
        EXPECT_GT(zvc_load_profile(path.c_str(), kResolution600, &code_, name_, sizeof name_), 0);
        EXPECT_EQ(watch.Opened(), 1u);
        EXPECT_LE(watch.Reads(), most);
    }
}

TEST_F(ProfileFile, LogsALoadWithoutAnExitLineWhenItSucceeds) {
    const std::string path = PathOf(SmallProfile(NameTag("Coated") + ResolutionTag(3, -6)));
    LogCapture log;
    EXPECT_EQ(Load(path), 5);
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Trace] <zvc_load_profile>", "[Info]  load_profile [" + path + "]",
                            "[Info]  Profile version:5", "[Info]  Profile name:Coated", "[Info]  HP Res:-6",
                            "[Info]  read_profile 5 -6 Coated"));
    EXPECT_EQ(code_, -6);
    EXPECT_STREQ(name_, "Coated");
}

TEST_F(ProfileFile, CountsAsLoadedOnlyAfterItIsRead) {
    const std::string path = PathOf(SmallProfile(NameTag("n")));
    const ImportPatch patch(nullptr, "ReadFile", reinterpret_cast<void*>(&NoteAndRead));
    originalRead = reinterpret_cast<decltype(&ReadFile)>(patch.Original());
    g_profileLoaded = loadedWhileReading = 1;
    EXPECT_EQ(Load(path), 5);  // expects g_profileLoaded to be 1
    EXPECT_EQ(loadedWhileReading, 0);
}

TEST_F(ProfileFile, WithoutAPathIsTheGenericConversion) {
    LogCapture log;
    char name[512] = "other";
    signed char code = 77;
    g_profileLoaded = 0;
    std::fill_n(g_colorCache, kCacheEntries, kNotComputed);
    SetCacheKind(5);
    EXPECT_EQ(zvc_load_profile(nullptr, kResolution300, &code, name, sizeof name), 1);
    EXPECT_STREQ(name, "Default");
    EXPECT_EQ(code, 77);
    EXPECT_EQ(g_cacheKind, 1);
    EXPECT_EQ(g_profileLoaded, 1);
    EXPECT_TRUE(HoldsGenericConversion(100));
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Trace] <zvc_load_profile>", "[Info]  generic profile",
                                             "[Trace] </zvc_load_profile>"));
}

TEST_F(ProfileFile, WithoutAPathHasHalfTheInkAt600DpiOnly) {
    zvc_load_profile(nullptr, kResolution600, &code_, name_, sizeof name_);
    EXPECT_TRUE(HoldsGenericConversion(50));
    EXPECT_EQ(g_colorCache[0xFFFFFF], 0u);
    EXPECT_EQ(g_colorCache[0x000000], 128u);
    zvc_load_profile(nullptr, kResolutionOther, &code_, name_, sizeof name_);
    EXPECT_TRUE(HoldsGenericConversion(100));
}

TEST_F(ProfileFile, CutsDefaultToTheNameBufferAndNeedsNone) {
    char name[4] = "abc";
    zvc_load_profile(nullptr, kResolution300, &code_, name, sizeof name);
    EXPECT_STREQ(name, "Def");
    EXPECT_EQ(zvc_load_profile(nullptr, kResolution300, &code_, nullptr, 0), 1);
}

TEST(ReadProfile, FillsTheGivenCache) {
    const ScratchFolder folder;
    const std::string path = folder.Write("test.zvp", SmallProfile(NameTag("mine"))).string();
    std::vector<uint32_t> cache(kCacheEntries);
    std::fill_n(g_colorCache, kCacheEntries, 0x12345678u);
    signed char code = 0;
    char name[5];
    EXPECT_EQ(ReadProfile(path.c_str(), name, sizeof name, false, cache.data(), &code), 5);
    EXPECT_STREQ(name, "mine");
    EXPECT_EQ(code, kDefaultResolutionCode);
    EXPECT_EQ(cache[0x102030], ProfileInk(0x102030, false));
    EXPECT_EQ(cache[0x102031], kNotComputed);
    EXPECT_EQ(g_colorCache[0x102030], 0x12345678u);
    char compact[4];
    EXPECT_EQ(ReadProfile(path.c_str(), compact, sizeof compact, false, cache.data(), &code), 0);
}

}  // namespace orvex
