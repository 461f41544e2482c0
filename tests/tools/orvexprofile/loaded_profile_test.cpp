#include "tools/orvexprofile/loaded_profile.h"

#include <gmock/gmock.h>

#include "driver/profiles/profile_file.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"

namespace orvex::tools::profile {

namespace {

using testing::ElementsAre;

// Returns the driver's words about a file that it refuses: the last line in its log, without the level.
std::string DriversWords(const std::filesystem::path& path) {
    LogCapture log(1);
    char name[kProfileNameCapacity];
    signed char code;
    EXPECT_EQ(ReadProfile(path.string().c_str(), name, sizeof name, false, g_colorCache, &code), 0);
    const std::vector<std::string> lines = log.TakeLines();
    if (lines.empty()) return "(no line)";
    return lines.back().substr(std::string_view("[Error] ").size());
}

std::string Resized(std::string bytes, size_t size) {
    bytes.resize(size);
    return bytes.replace(4, 4, Number32(static_cast<uint32_t>(size)));
}

class LoadedProfile : public testing::Test {
  protected:
    std::filesystem::path Write(const std::string& bytes) const { return scratch_.Write("file.zvp", bytes); }
    // Returns the contents of a file of these bytes, loaded for other resolutions.
    ProfileFacts Load(const std::string& bytes) const {
        return LoadIntoDriver(Write(bytes), PrintVariant::kOther);
    }

    const ScratchFolder scratch_;
};
using DriverColors = LoadedProfile;

TEST_F(LoadedProfile, GivesTheDriversOwnReasonForEveryRefusedFile) {
    const std::string sound = FileWithTags(Tag(1, "Sound"));
    std::string foreign = sound, sizeOff = sound, wrapping = sound;
    foreign.replace(0, 3, "PNG");
    sizeOff.replace(4, 4, Number32(static_cast<uint32_t>(sound.size() + 1)));
    wrapping.replace(13, 2, Number16(3));
    const struct {
        const char* title;
        std::string bytes;
    } brokenFiles[] = {
        {"empty", ""},
        {"11 bytes", sound.substr(0, 11)},
        {"another mark", foreign},
        {"a size off by one", sizeOff},
        {"no tag area", Resized(sound, 14)},
        {"no tag", Resized(sound, 16)},
        {"a cut name", Resized(sound, 20)},
        {"a name of 512", FileWithTags(Tag(1, std::string(512, 'n')))},
        {"three codes", FileWithTags(Tag(2, "abc"))},
        {"cut codes", Resized(FileWithTags(Tag(2, "ab")), 19)},
        {"an unknown tag", FileWithTags(Tag(1, "x") + Tag(9, ""))},
        {"an area too short for its tags", wrapping},
        {"a byte too many", Resized(sound, sound.size() + 1)},
        {"version 6", FileWithTags(Tag(1, "x"), 6)},
        {"version 0", FileWithTags(Tag(1, "x"), 0)},
        {"version 3 of the size of 5", FileWithTags(Tag(1, "x"), 3)},
    };
    for (const auto& file : brokenFiles) {
        SCOPED_TRACE(file.title);
        const ProfileFacts facts = Load(file.bytes);
        EXPECT_FALSE(facts.Accepted());
        EXPECT_EQ(facts.problem, DriversWords(Write(file.bytes)));
    }
}

TEST_F(LoadedProfile, ThrowsTheNameAndTheReasonOfARefusedFile) {
    const std::filesystem::path path = Write(FileWithTags(Tag(9, "")));
    EXPECT_THAT([&] { LoadAccepted(path, PrintVariant::kOther); },
                testing::ThrowsMessage<std::runtime_error>(path.string() + ": invalid profile tag 9"));
    const std::filesystem::path cut = Write("ZVC");
    EXPECT_THAT([&] { LoadAccepted(cut, PrintVariant::kOther); },
                testing::ThrowsMessage<std::runtime_error>("error reading file " + cut.string() + " 3"));
}

TEST_F(LoadedProfile, RefusesAFolderAndAFileThatCannotBeOpened) {
    for (const std::filesystem::path& path : {scratch_.Path(), scratch_.Path() / "none.zvp"}) {
        const ProfileFacts facts = LoadIntoDriver(path, PrintVariant::kOther);
        EXPECT_FALSE(facts.Accepted());
        EXPECT_EQ(facts.problem, DriversWords(path));
        EXPECT_EQ(facts.size, 0u);
    }
}

TEST_F(LoadedProfile, GivesTheDriversOwnReasonIfTheColorsCannotBeRead) {
    const std::filesystem::path path = Write(FileWithTags(Tag(1, "Sound")));
    const ImportPatch failure(nullptr, "SetFilePointerEx", reinterpret_cast<void*>(&FailToSeek));
    EXPECT_THAT(
        [&] { LoadAccepted(path, PrintVariant::kOther); },
        testing::ThrowsMessage<std::runtime_error>(path.string() + ": error reading profile 0<>19652"));
}

TEST_F(LoadedProfile, TakesTheLastTagOfAKind) {
    const std::string tags = Tag(2, "\x01\x02") + Tag(1, "First") + Tag(1, "Last") + Tag(2, "\xFF\x03");
    const ProfileFacts facts = Load(FileWithTags(tags));
    EXPECT_TRUE(facts.Accepted());
    EXPECT_EQ(facts.Name(), "Last");
    EXPECT_EQ(facts.Codes(), (ResolutionCodes{-1, 3}));
    ASSERT_EQ(facts.tags.size(), 4u);
    EXPECT_EQ(facts.tags[0].offset, 15u);
    EXPECT_EQ(facts.tags[1].offset, 20u);
    EXPECT_EQ(facts.tags[1].id, 1);
    EXPECT_EQ(facts.tags[1].length, 5u);
    EXPECT_EQ(facts.tags[1].data, "First");
    EXPECT_EQ(facts.dataOffset, 15u + tags.size());
    EXPECT_EQ(facts.tagAreaLength, 3u + tags.size());
    EXPECT_EQ(facts.version, 5);
    EXPECT_EQ(facts.size, 15 + tags.size() + 39304);
    EXPECT_EQ(facts.storedSize, facts.size);
}

TEST_F(LoadedProfile, AcceptsAFileWithASingleTag) {
    const ProfileFacts named = Load(FileWithTags(Tag(1, "")));
    EXPECT_TRUE(named.Accepted());
    EXPECT_EQ(named.Name(), "");
    EXPECT_EQ(named.Codes(), std::nullopt);
    const ProfileFacts coded = Load(FileWithTags(Tag(2, "\x05\x06")));
    EXPECT_TRUE(coded.Accepted());
    EXPECT_EQ(coded.Name(), std::nullopt);
    EXPECT_EQ(coded.Codes(), (ResolutionCodes{5, 6}));
}

TEST_F(LoadedProfile, KeepsTheTagsThatPrecedeAProblem) {
    const ProfileFacts facts = Load(FileWithTags(Tag(1, "Kept") + Tag(7, "?")));
    EXPECT_EQ(facts.problem, "invalid profile tag 7");
    EXPECT_EQ(facts.Name(), "Kept");
    EXPECT_EQ(facts.tags.size(), 2u);
    EXPECT_EQ(facts.dataOffset, 0u);
}

uint32_t Meant(int version, uint32_t color) {
    uint32_t inks = 0;
    LoadedColors(version)({&color, 1}, {&inks, 1});
    return inks;
}

TEST_F(DriverColors, AreThoseOfTheLoadedVariant) {
    const std::filesystem::path path = scratch_.Path() / "sample.zvp";
    WriteProfileFile(SampleProfile(5), path);
    LoadAccepted(path, PrintVariant::kAt600);
    EXPECT_EQ(LookupColor(0x102030), SampleInks(0x102030, true));
    EXPECT_EQ(LoadedEntries(5), SampleProfile(5).at600);
    LoadAccepted(path, PrintVariant::kOther);
    EXPECT_EQ(LookupColor(0x102030), SampleInks(0x102030, false));
    EXPECT_EQ(LoadedEntries(5), SampleProfile(5).other);
}

TEST_F(DriverColors, AreTheBuiltInConversionWithoutAProfile) {
    LoadGenericIntoDriver(PrintVariant::kAt600);
    EXPECT_EQ(LookupColor(0), PackInks(128, 0, 0, 0));
    LoadGenericIntoDriver(PrintVariant::kOther);
    EXPECT_EQ(LookupColor(0), PackInks(255, 0, 0, 0));
    EXPECT_EQ(LookupColor(0xFF0000), PackInks(0, 0, 255, 255));
}

TEST_F(DriverColors, AreOnTheStraightLineBetweenTheEntriesOfAHalfGrid) {
    const std::filesystem::path path = scratch_.Path() / "half.zvp";
    for (int version : {3, 4}) {
        SCOPED_TRACE(version);
        WriteProfileFile(SampleProfile(version), path);
        LoadAccepted(path, PrintVariant::kOther);
        EXPECT_FALSE(PrintsAsMeant(version));
        EXPECT_EQ(Meant(version, 0x102030), SampleInks(0x102030, false));
        EXPECT_EQ(Meant(version, 0x112030), SampleInks(0x112030, false));
        EXPECT_EQ(Meant(version, 0x112131), SampleInks(0x112131, false));
        EXPECT_EQ(Meant(version, 0xFFFFFF), SampleInks(0xFFFFFF, false));
        EXPECT_EQ(Meant(version, 0xFF0010), SampleInks(0xFF0010, false));
        // 254 has the inks of 255, so 253 is between 252 and 255, rounded up.
        EXPECT_EQ(Meant(version, 0xFD1010), SampleInks(0xFE1010, false));
        EXPECT_EQ(LoadedEntries(version), SampleProfile(version).other);
    }
}

TEST_F(DriverColors, AreMeantAsTheyPrintInOtherVersions) {
    const std::filesystem::path path = scratch_.Path() / "grid.zvp";
    WriteProfileFile(SampleProfile(5), path);
    LoadAccepted(path, PrintVariant::kOther);
    EXPECT_TRUE(PrintsAsMeant(5));
    const std::vector<uint32_t> colors = ColorsEvery(13);
    std::vector<uint32_t> meant(colors.size());
    LoadedColors(5)(colors, meant);
    EXPECT_EQ(meant, PrintedInks(colors));
}

TEST_F(DriverColors, IncludeBothEndsAtEveryStep) {
    const std::vector<uint32_t> colors = ColorsEvery(128);
    EXPECT_EQ(colors.size(), 27u);
    EXPECT_EQ(colors.front(), 0u);
    EXPECT_EQ(colors[1], 0x000080u);
    EXPECT_EQ(colors[2], 0x0000FFu);
    EXPECT_EQ(colors.back(), 0xFFFFFFu);
    EXPECT_THAT(ColorsEvery(255),
                ElementsAre(0, 0xFF, 0xFF00, 0xFFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF));
}

}  // namespace

}  // namespace orvex::tools::profile
