#include "driver/profiles/profile_reader.h"

#include <gtest/gtest.h>

#include <fstream>

#include "driver/profiles/profile_file.h"
#include "tests/driver/profiles/profile_fixture.h"

namespace orvex {

using namespace std::string_literals;
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

TEST_F(ProfileFile, OfVersion1Or2FillsEveryEntryAtBothResolutions) {
    for (const int version : {1, 2}) ExpectEveryEntryLoaded(version, 0);
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

namespace {

// Widens text of a code page in which 0x95 0x5C is one character, although 0x5C alone is the backslash.
INT WINAPI WidenDoubleBytes(UINT, DWORD, LPCSTR text, INT length, LPWSTR wide, INT) {
    INT written = 0;
    for (INT i = 0; i < length; ++written) {
        const bool pair = text[i] == '\x95' && i + 1 < length;
        wide[written] = pair ? 0x8868 : static_cast<WCHAR>(text[i]);
        i += pair ? 2 : 1;
    }
    return written;
}

// Widens text of the code page in which every byte is the character of that number.
INT WINAPI WidenLatin1(UINT, DWORD, LPCSTR text, INT length, LPWSTR wide, INT) {
    for (INT i = 0; i < length; ++i) wide[i] = static_cast<unsigned char>(text[i]);
    return length;
}

// Makes a scratch folder current, with profiles inside its folder "profiles" and outside of it.
class NamedProfile : public ProfileFixture {
  protected:
    NamedProfile() : before_(std::filesystem::current_path()) {
        const std::string bytes = SmallProfile(NameTag("Found"));
        for (const char* name :
             {"profiles/in.zvp", "profiles/a..b c.zvp", "profiles/sub/deep.zvp", "out.zvp"}) {
            folder_.Write(name, bytes);
        }
        // Only the native file system accepts such a name.
        std::ofstream(folder_.Path() / "profiles" / "c:in.zvp", std::ios::binary) << bytes;
        std::filesystem::current_path(folder_.Path());
    }
    ~NamedProfile() override { std::filesystem::current_path(before_); }

    std::filesystem::path before_;
};

}  // namespace

TEST(BareFileName, HasNoSeparatorAndNoDrive) {
    for (const char* name : {"a", "a.zvp", "a b..zvp", "a~1.zvp", "...", "..a", ".zvp"})
        EXPECT_TRUE(IsBareFileName(name)) << name;
    for (const char* name :
         {"", "..", "a\\b", "a/b", "\\a", "/a", "a\\", "a/", "..\\a", "../a", "c:", "c:a", "a:b", ":"}) {
        EXPECT_FALSE(IsBareFileName(name)) << name;
    }
}

TEST(BareFileName, IsNotADevices) {
    for (const char* name :
         {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$", "COM1", "COM9", "LPT1", "LPT9"}) {
        for (const char* end : {"", ".", ".zvp", ".a.zvp", "..", " ", "  ", " .zvp", " . ", ". .zvp"}) {
            std::string text = std::string(name) + end;
            EXPECT_FALSE(IsBareFileName(text.c_str())) << text;
            for (char& c : text) c = static_cast<char>(tolower(c));
            EXPECT_FALSE(IsBareFileName(text.c_str())) << text;
        }
    }
    for (const char* name : {"nUl.zvp", "Com5.ZVP", "cOnOuT$", "NUL:", "NUL:stream", "com1:.zvp"})
        EXPECT_FALSE(IsBareFileName(name)) << name;
}

TEST(BareFileName, MayResembleADevices) {
    for (const char* name :
         {"CO",        "CONN",     "CON1", "NUL1.zvp",  "NULL.zvp",  "a.NUL",   "aNUL",    " NUL",
          ".NUL",      "NUL_.zvp", "N UL", "NUL a.zvp", "COM",       "COM.zvp", "COM0",    "COM10",
          "COM11.zvp", "COM#",     "COMA", "LPT",       "LPT0.zvp",  "CONIN",   "CONIN$$", "CONOUT",
          "CLOCK$",    "CONIND",   " ",    " .zvp",     "COM1a.zvp", "xCOM1"}) {
        EXPECT_TRUE(IsBareFileName(name)) << name;
    }
}

TEST(BareFileName, IsNotAPortsWithASuperscriptNumber) {
    const ImportPatch patch(nullptr, "MultiByteToWideChar", reinterpret_cast<void*>(&WidenLatin1));
    for (const std::string port : {"COM", "lpt"}) {
        for (const char* digit : {"\xB9", "\xB2", "\xB3"}) {
            EXPECT_FALSE(IsBareFileName((port + digit).c_str())) << port << digit;
            EXPECT_FALSE(IsBareFileName((port + digit + " .zvp").c_str())) << port << digit;
            EXPECT_TRUE(IsBareFileName((port + "1" + digit).c_str())) << port << digit;
        }
        for (const char* digit : {"\xB0", "\xB1", "\xB4", "\xB8", "\xBA", "\xE1"})
            EXPECT_TRUE(IsBareFileName((port + digit).c_str())) << port << digit;
    }
}

TEST(BareFileName, IsShortEnoughForAPath) {
    EXPECT_TRUE(IsBareFileName(std::string(511, 'a').c_str()));
    EXPECT_FALSE(IsBareFileName(std::string(512, 'a').c_str()));
    EXPECT_FALSE(IsBareFileName((std::string(600, 'a') + "\\b").c_str()));
}

TEST(BareFileName, MayHaveACharacterWhoseSecondByteLooksLikeASeparator) {
    const ImportPatch patch(nullptr, "MultiByteToWideChar", reinterpret_cast<void*>(&WidenDoubleBytes));
    EXPECT_TRUE(IsBareFileName("\x95\x5C.zvp"));
    EXPECT_FALSE(IsBareFileName("\x95\x5C\x5C.zvp"));
}

TEST_F(NamedProfile, IsReadFromTheProfilesFolder) {
    for (const char* name : {"in.zvp", "a..b c.zvp"}) {
        EXPECT_EQ(Load(std::string("profiles\\") + name), 5) << name;
        EXPECT_STREQ(name_, "Found");
    }
}

TEST_F(NamedProfile, IsNotOpenedWhenItIsADevice) {
    for (const std::string name : {"NUL", "nul.zvp", "con .zvp", "COM1.zvp", "lpt9"}) {
        const std::string path = "profiles\\" + name;
#ifndef _WIN32
        // Windows would open the device; natively it is a file, which must not be opened either.
        folder_.Write("profiles/" + name, SmallProfile(NameTag("Device")));
#endif
        ExpectRejected(path, {"[Error] Error: could not open file [" + path + "]"});
        EXPECT_STREQ(name_, "asked.zvp");
    }
}

TEST_F(NamedProfile, IsNotOpenedOutsideTheProfilesFolder) {
    const std::string absolute = (folder_.Path() / "out.zvp").string();
    for (const std::string& name : {"..\\out.zvp"s, "../out.zvp"s, "sub\\deep.zvp"s, "sub/deep.zvp"s,
                                    "..\\profiles\\in.zvp"s, "c:in.zvp"s, ".."s, absolute}) {
        const std::string path = "profiles\\" + name;
        ExpectRejected(path, {"[Error] Error: could not open file [" + path + "]"});
        EXPECT_STREQ(name_, "asked.zvp");
        EXPECT_EQ(code_, 48);
    }
}

}  // namespace orvex
