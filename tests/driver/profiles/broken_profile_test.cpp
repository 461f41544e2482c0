#include <functional>

#include "driver/profiles/profile_reader.h"
#include "tests/driver/profiles/profile_fixture.h"
#include "tools/host/guarded_memory.h"

namespace orvex {

using namespace tools;
using namespace std::string_literals;
using testing::ElementsAre;

namespace {

constexpr size_t kBlock = BlockReader::kBlock;
constexpr size_t kPiece = 32768;  // bytes of a plane that are read at once

// Lets a number of calls of ReadFile or of SetFilePointerEx pass, and fails those that follow.
class CallsCounted {
  public:
    CallsCounted(const char* function, int allowed)
        : patch_(nullptr, function,
                 function == std::string("ReadFile") ? reinterpret_cast<void*>(&Read)
                                                     : reinterpret_cast<void*>(&Seek)) {
        left = allowed;
        original = patch_.Original();
    }

  private:
    static inline int left;
    static inline void* original;

    static BOOL WINAPI Read(HANDLE file, LPVOID buffer, DWORD size, LPDWORD came, LPOVERLAPPED overlapped) {
        return left-- > 0 &&
               reinterpret_cast<decltype(&ReadFile)>(original)(file, buffer, size, came, overlapped);
    }
    static BOOL WINAPI Seek(HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER position, DWORD method) {
        return left-- > 0 &&
               reinterpret_cast<decltype(&SetFilePointerEx)>(original)(file, distance, position, method);
    }

    ImportPatch patch_;
};

class BrokenProfile : public ProfileFixture {
  protected:
    // Returns the path of a profile with the name "n" whose colors are these bytes, then zeros.
    std::string HollowProfile(int version, std::string_view colors) {
        const std::filesystem::path path = folder_.Path() / "hollow.zvp";
        const std::string area = TagArea(NameTag("n"));
        const uint64_t size = 12 + area.size() + ColorsSize(version);
        WriteBytes(path, ProfileHead(version, size) + area + std::string(colors));
        std::filesystem::resize_file(path, size);
        return path.string();
    }

    // Reads a hollow profile of that version while `function` fails after `allowed` calls. Expects a refusal
    // that logs how many bytes of the variant came.
    void ExpectFailure(int version, const char* function, int allowed, size_t came) {
        const std::string path = HollowProfile(version, "");
        for (const bool at600Dpi : {true, false}) {
            SCOPED_TRACE(testing::Message() << "version " << version << ", " << function << " after "
                                            << allowed << ", 600 dpi: " << at600Dpi);
            LogCapture log(1);
            {
                const CallsCounted failure(function, allowed);
                EXPECT_EQ(ReadProfile(path.c_str(), name_, sizeof name_, at600Dpi, g_colorCache, &code_), 0);
            }
            EXPECT_EQ(log.TakeLines().back(), "[Error] error reading profile " + std::to_string(came) + "<>" +
                                                  std::to_string(ColorsSize(version) / 2));
        }
    }
};

std::string VersionLine(int version) {
    return std::string("[Info]  Profile version:").append(std::to_string(version));
}

// Fails only for files of this size, since the log measures its file as well.
LONGLONG unmeasurable;
decltype(&GetFileSizeEx) originalMeasure;

BOOL WINAPI FailToMeasure(HANDLE file, PLARGE_INTEGER size) {
    return originalMeasure(file, size) && size->QuadPart != unmeasurable;
}

}  // namespace

TEST_F(BrokenProfile, ThatIsMissingIsRejected) {
    const std::string path = (folder_.Path() / "none.zvp").string();
    for (const int32_t resolution : {kResolution600, kResolution300}) {  // with half and with full ink
        ExpectRejected(path, {"[Error] Error: could not open file [" + path + "]"}, resolution);
        EXPECT_STREQ(name_, "asked.zvp");
        EXPECT_EQ(code_, 48);
    }
}

TEST_F(BrokenProfile, ThatIsAFolderIsRejected) {
    const std::string path = folder_.Path().string();
    ExpectRejected(path, {"[Error] Error: could not open file [" + path + "]"});
}

TEST_F(BrokenProfile, ShorterThanItsHeaderIsRejected) {
    ExpectRejectedBytes("", {"[Error] error reading file <path> 0"});
    ExpectRejectedBytes("ZVC\x05", {"[Error] error reading file <path> 4"});
    ExpectRejectedBytes(ProfileHead(5, 11).substr(0, 11), {"[Error] error reading file <path> 11"});
}

TEST_F(BrokenProfile, ShowsItsMarkAsFarAsItGoes) {
    for (const std::string mark : {"", "Z", "ZV", "ZVC"}) {
        const std::string path = (folder_.Path() / "short.zvp").string();
        WriteBytes(path, mark);
        BlockReader file(path.c_str());
        ProfileHeader header;
        EXPECT_TRUE(ReadProfileHeader(file, &header));
        EXPECT_EQ(std::string(header.mark, header.markSize), mark);
    }
}

TEST_F(BrokenProfile, WithoutAKnownLengthIsRejected) {
    const std::string bytes = SmallProfile(NameTag("n"));
    const ImportPatch patch(nullptr, "GetFileSizeEx", reinterpret_cast<void*>(&FailToMeasure));
    originalMeasure = reinterpret_cast<decltype(&GetFileSizeEx)>(patch.Original());
    unmeasurable = static_cast<LONGLONG>(bytes.size());
    ExpectRejectedBytes(bytes, {"[Error] error reading file <path> 0"});
}

TEST_F(BrokenProfile, IsLoggedOnlyWithErrors) {
    LogCapture log(2);
    Load((folder_.Path() / "none.zvp").string());
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Trace] <zvc_load_profile>", "[Trace] </zvc_load_profile>"));
}

TEST_F(BrokenProfile, WithAnotherMarkIsRejected) {
    std::string bytes = SmallProfile(NameTag("n"));
    bytes[2] = 'D';
    ExpectRejectedBytes(bytes, {"[Error] invalid profile file <path> ZVD 39323<>39323"});
    bytes[0] = 'z';
    ExpectRejectedBytes(bytes, {"[Error] invalid profile file <path> zVD 39323<>39323"});
}

TEST_F(BrokenProfile, WhoseStoredSizeIsOffByOneIsRejected) {
    const std::string bytes = SmallProfile(NameTag("n"));
    ExpectRejectedBytes(bytes + "!", {"[Error] invalid profile file <path> ZVC 39323<>39324"});
    ExpectRejectedBytes(bytes.substr(0, bytes.size() - 1),
                        {"[Error] invalid profile file <path> ZVC 39323<>39322"});
    EXPECT_STREQ(name_, "asked.zvp");
}

TEST_F(BrokenProfile, WithoutAWholeTagAreaHeaderIsRejected) {
    ExpectRejectedBytes(ProfileBytes(5, "", ""),
                        {"[Info]  Profile version:5", "[Info]  error reading tag header 0<>3"});
    ExpectRejectedBytes(ProfileBytes(5, std::string("\0\3", 2), ""),
                        {"[Info]  Profile version:5", "[Info]  error reading tag header 2<>3"});
}

TEST_F(BrokenProfile, ReadsOneTagEvenFromATagAreaOfLength3) {
    // The one tag makes the count wrap, so the colors, all zero, are read as a tag.
    ExpectRejectedBytes(
        ProfileBytes(5, TagArea(NameTag("wrap"), 3), GridColors([](uint32_t, bool) { return 0u; })),
        {"[Info]  Profile version:5", "[Info]  Profile name:wrap", "[Info]  invalid profile tag 0"});
    EXPECT_STREQ(name_, "wrap");
}

TEST_F(BrokenProfile, ReadsTagsBeyondTheirAreaUpToTheFilesEnd) {
    for (const uint32_t length : {0u, 1u, 3u, 5u}) {
        ExpectRejectedBytes(ProfileBytes(5, TagArea(NameTag("a") + NameTag("b"), length), ""),
                            {"[Info]  Profile version:5", "[Info]  Profile name:a", "[Info]  Profile name:b",
                             "[Info]  error reading tag 0<>3"});
        EXPECT_STREQ(name_, "b");
    }
}

TEST_F(BrokenProfile, StopsInBoundedTimeHoweverManyTagsFollow) {
    std::string tags;
    for (int i = 0; i < 2000000; ++i) tags += NameTag("");
    const std::string path = PathOf(ProfileBytes(5, TagArea(tags, 3), ""));
    EXPECT_EQ(Load(path), 1);
    EXPECT_STREQ(name_, "");
}

TEST_F(BrokenProfile, WithACutTagHeaderIsRejected) {
    ExpectRejectedBytes(
        ProfileBytes(5, TagArea(NameTag("n") + "\1\0"s, 40), ""),
        {"[Info]  Profile version:5", "[Info]  Profile name:n", "[Info]  error reading tag 2<>3"});
}

TEST_F(BrokenProfile, TakesANameOf511BytesButNotOf512) {
    EXPECT_EQ(Load(PathOf(SmallProfile(NameTag(std::string(511, 'x'))))), 5);
    EXPECT_EQ(name_, std::string(511, 'x'));
    ExpectRejectedBytes(SmallProfile(NameTag(std::string(512, 'x'))),
                        {"[Info]  Profile version:5", "[Info]  not enough space to store profile name"});
    EXPECT_STREQ(name_, "asked.zvp");
}

TEST_F(BrokenProfile, TerminatesANameThatTheFileCutsShort) {
    const std::string tags = "\1\x0A\0short"s;
    ExpectRejectedBytes(ProfileBytes(5, TagArea(tags, 16), ""),
                        {"[Info]  Profile version:5", "[Info]  error reading profile name"});
    EXPECT_STREQ(name_, "short");
    EXPECT_STREQ(name_ + 6, "zvp");  // the rest of the name before
}

TEST_F(BrokenProfile, MustHaveAResolutionTagOfTwoBytes) {
    ExpectRejectedBytes(SmallProfile(Tag(2, "123")),
                        {"[Info]  Profile version:5", "[Info]  invalid hpres length 3"});
    ExpectRejectedBytes(SmallProfile(Tag(2, "1")),
                        {"[Info]  Profile version:5", "[Info]  invalid hpres length 1"});
    EXPECT_EQ(code_, 48);
}

TEST_F(BrokenProfile, TakesAResolutionCodeThatTheFileCutsShort) {
    const std::string cut =
        "\2\2\0"
        "7"s;
    const std::vector<std::string> lines = {"[Info]  Profile version:5", "[Info]  error reading hpres"};
    const std::string path = PathOf(ProfileBytes(5, TagArea(cut, 8), ""));
    ExpectRejected(path, lines, kResolution300);
    EXPECT_EQ(code_, '7');
    ExpectRejected(path, lines, kResolution600);
    EXPECT_EQ(code_, 0);
}

TEST_F(BrokenProfile, WithoutAResolutionTagHasTheCode48) {
    EXPECT_EQ(Load(PathOf(SmallProfile(NameTag("n")))), 5);
    EXPECT_EQ(code_, 48);
}

TEST_F(BrokenProfile, WithoutANameLeavesTheNameBuffer) {
    EXPECT_EQ(Load(PathOf(SmallProfile(ResolutionTag(1, 2)))), 5);
    EXPECT_STREQ(name_, "asked.zvp");
    EXPECT_EQ(code_, 2);
}

TEST_F(BrokenProfile, LetsALaterTagReplaceAnEarlierOne) {
    EXPECT_EQ(Load(PathOf(SmallProfile(ResolutionTag(1, 2) + NameTag("first one") + ResolutionTag(3, 4) +
                                       NameTag("second")))),
              5);
    EXPECT_STREQ(name_, "second");
    EXPECT_EQ(code_, 4);
}

TEST_F(BrokenProfile, WithAnUnknownTagIsRejected) {
    ExpectRejectedBytes(
        SmallProfile(NameTag("n") + Tag(3, "abc")),
        {"[Info]  Profile version:5", "[Info]  Profile name:n", "[Info]  invalid profile tag 3"});
    EXPECT_STREQ(name_, "n");
    ExpectRejectedBytes(SmallProfile(Tag('\xFF', "")),
                        {"[Info]  Profile version:5", "[Info]  invalid profile tag 255"});
}

TEST_F(BrokenProfile, WithAnUnknownVersionIsRejected) {
    for (const int version : {0, 6, 255}) {
        ExpectRejectedBytes(
            ProfileBytes(version, TagArea(ResolutionTag(8, 9)), GridColors(ProfileInk)),
            {VersionLine(version), "[Info]  HP Res:9", "[Error] non supported profile version"});
        EXPECT_EQ(code_, 9);
    }
}

TEST_F(BrokenProfile, WithColorsOfAnotherSizeThanItsVersionsIsRejected) {
    for (const auto& [version, size] :
         {std::pair{1, "134217728"}, {2, "134217728"}, {3, "16777216"}, {4, "16777216"}, {5, "39304"}}) {
        ExpectRejectedBytes(
            ProfileBytes(version, TagArea(NameTag("n")), std::string(39303, 0)),
            {VersionLine(version), "[Info]  Profile name:n", "[Error] invalid file size 39303<>"s + size});
    }
    ExpectRejectedBytes(
        ProfileBytes(5, TagArea(NameTag("n")), std::string(39305, 0)),
        {"[Info]  Profile version:5", "[Info]  Profile name:n", "[Error] invalid file size 39305<>39304"});
    ExpectRejectedBytes(
        ProfileBytes(5, TagArea(NameTag("n")), ""),
        {"[Info]  Profile version:5", "[Info]  Profile name:n", "[Error] invalid file size 0<>39304"});
}

TEST_F(BrokenProfile, IsGenericWhenTheColorsOfVersion1EndEarly) {
    const std::string path = HollowProfile(1, "");
    LogCapture log;
    const FileWatch watch;
    watch.EndAfter(kBlock + 1000);  // the head takes one block
    EXPECT_EQ(zvc_load_profile(path.c_str(), kResolution600, &code_, name_, sizeof name_), 1);
    EXPECT_EQ(watch.Open(), 0u);
    EXPECT_TRUE(HoldsGenericConversion(50));
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Trace] <zvc_load_profile>", "[Info]  load_profile [" + path + "]",
                            "[Info]  Profile version:1", "[Info]  Profile name:n",
                            "[Error] error reading profile 1000<>67108864", "[Info]  read_profile 0 48 n",
                            "[Error] error reading profile n!", "[Info]  generic profile",
                            "[Trace] </zvc_load_profile>"));
}

TEST_F(BrokenProfile, LeavesMissingColorsOfTheOtherVersionsAsPrepared) {
    // The 600 dpi variant begins with these bytes, and no more of it can be read.
    std::string come(1030, '\0');
    for (size_t i = 0; i < come.size(); ++i) come[i] = static_cast<char>(1 + i % 251);
    const auto byteAt = [&](uint32_t place) { return uint32_t{static_cast<uint8_t>(come[place])}; };
    const auto entry = [&](uint32_t index) {
        return plain::Ink(byteAt(4 * index), byteAt(4 * index + 1), byteAt(4 * index + 2),
                          byteAt(4 * index + 3));
    };
    // 257 whole entries come. The places of a color in the versions that leave some out are these.
    const auto inHalfGrid = [](uint32_t color) {
        return color < 0x010000 ? color >> 9 << 7 | (color & 0xFF) / 2 : 9999;
    };
    const auto inGrid = [](uint32_t color) {
        const auto step = [](uint32_t component) { return (component + 1) / 16; };
        return (step(plain::Blue(color)) * 17 + step(plain::Green(color))) * 17 + step(plain::Red(color));
    };
    const std::function<uint32_t(uint32_t)> expected[] = {
        [&](uint32_t color) { return color < 1030 ? byteAt(color) << 24 : 0; },
        [&](uint32_t color) {
            return plain::IsAllEven(color) && inHalfGrid(color) < 257 ? entry(inHalfGrid(color)) : 0;
        },
        [&](uint32_t color) {
            const bool came = plain::IsAllEven(color) && inHalfGrid(color) < 1030;
            return came ? byteAt(inHalfGrid(color)) << 24 | 0xFFFFFF : kNotComputed;
        },
        [&](uint32_t color) {
            return plain::IsGridPoint(color) && inGrid(color) < 257 ? entry(inGrid(color)) : kNotComputed;
        },
    };
    for (const int version : {2, 3, 4, 5}) {
        const std::string path = HollowProfile(version, come);
        const FileWatch watch;
        watch.EndAfter(kBlock + 1030);  // the head takes one block
        EXPECT_EQ(zvc_load_profile(path.c_str(), kResolution600, &code_, name_, sizeof name_), version);
        EXPECT_EQ(watch.Open(), 0u);
        EXPECT_TRUE(SameForEveryColor(StoredEntry, expected[version - 2])) << version;
    }
}

TEST_F(BrokenProfile, IsRejectedWhenASeekFails) {
    for (const int version : {1, 3, 5}) {
        const std::string path = HollowProfile(version, "");
        LogCapture log(1);
        const ImportPatch patch(nullptr, "SetFilePointerEx", reinterpret_cast<void*>(&FailToSeek));
        EXPECT_EQ(Load(path, kResolution300), 1);
        EXPECT_TRUE(HoldsGenericConversion(100));
        EXPECT_THAT(log.TakeLines(),
                    testing::Contains(testing::StartsWith("[Error] error reading profile 0<>")));
    }
}

TEST_F(BrokenProfile, LogsHowManyBytesCameBeforeAReadThatFailed) {
    // The first read gets the head. After the seek to the variant, its bytes come in blocks.
    ExpectFailure(1, "ReadFile", 1, 0);
    ExpectFailure(3, "ReadFile", 1, 0);
    ExpectFailure(3, "ReadFile", 4, 3 * kBlock);
    ExpectFailure(4, "ReadFile", 4, 3 * kBlock);
    ExpectFailure(4, "ReadFile", 1 + 1023, 1023 * kBlock);
    ExpectFailure(5, "ReadFile", 1, 0);
    ExpectFailure(5, "ReadFile", 1 + 2, 2 * kBlock);
}

TEST_F(BrokenProfile, LogsHowManyBytesOfAllPlanesCameBeforeAFailure) {
    // Version 2 seeks each plane for each of its blocks.
    for (const int blocks : {0, 3}) {
        for (int plane = 0; plane < 4; ++plane) {
            const int came = 4 * blocks + plane;
            ExpectFailure(2, "ReadFile", 1 + came, came * kPiece);
            ExpectFailure(2, "SetFilePointerEx", 1 + came, came * kPiece);
        }
    }
}

TEST_F(BrokenProfile, IsGenericWhenItsPlanesCanNotBeRead) {
    const std::string path = HollowProfile(2, "\x80");
    LogCapture log(1);
    {
        const CallsCounted failure("ReadFile", 1 + 6);
        EXPECT_EQ(Load(path), 1);
    }
    EXPECT_TRUE(HoldsGenericConversion(50));
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Info]  load_profile [" + path + "]", "[Info]  Profile version:2",
                            "[Info]  Profile name:n", "[Error] error reading profile 196608<>67108864",
                            "[Info]  read_profile 0 48 n", "[Error] error reading profile n!",
                            "[Info]  generic profile"));
}

TEST_F(BrokenProfile, WithoutAnyColorWritesNothingPastTheCache) {
    const std::string path = HollowProfile(2, "");
    const tools::GuardedMemory cache(kCacheEntries * sizeof(uint32_t), 64);
    EXPECT_EQ(ReadProfile(path.c_str(), name_, sizeof name_, true, reinterpret_cast<uint32_t*>(cache.Data()),
                          &code_),
              2);
}

TEST_F(BrokenProfile, IsRejectedWhenAReadFails) {
    const std::string path = PathOf(SmallProfile(NameTag("n")));
    LogCapture log(1);
    {
        const ImportPatch patch(nullptr, "ReadFile", reinterpret_cast<void*>(&FailToRead));
        EXPECT_EQ(Load(path), 1);
    }
    EXPECT_EQ(log.TakeLines()[1], "[Error] error reading file " + path + " 0");
}

}  // namespace orvex
