#include "tools/orvexprofile/loaded_profile.h"

#include <gmock/gmock.h>

#include "driver/profiles/profile_file.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tests/tools/orvexprofile/profile_samples.h"

namespace orvex::tools::profile {

namespace {

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

TEST(ProfileLoading, GivesTheDriversOwnReasonForEveryRefusedFile) {
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
    const ScratchFolder scratch;
    for (const auto& file : brokenFiles) {
        SCOPED_TRACE(file.title);
        const std::filesystem::path path = scratch.Write("broken.zvp", file.bytes);
        const ProfileFacts facts = LoadIntoDriver(path, PrintVariant::kOther);
        EXPECT_FALSE(facts.Accepted());
        EXPECT_EQ(facts.problem, DriversWords(path));
    }
}

TEST(ProfileLoading, ThrowsTheNameAndTheReasonOfARefusedFile) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Write("bad.zvp", FileWithTags(Tag(9, "")));
    EXPECT_THAT([&] { LoadAccepted(path, PrintVariant::kOther); },
                testing::ThrowsMessage<std::runtime_error>(path.string() + ": invalid profile tag 9"));
    const std::filesystem::path cut = scratch.Write("cut.zvp", "ZVC");
    EXPECT_THAT([&] { LoadAccepted(cut, PrintVariant::kOther); },
                testing::ThrowsMessage<std::runtime_error>("error reading file " + cut.string() + " 3"));
}

TEST(ProfileLoading, SaysThatAFileCanNotBeOpened) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Path() / "none.zvp";
    const ProfileFacts facts = LoadIntoDriver(path, PrintVariant::kOther);
    EXPECT_EQ(facts.problem, "Error: could not open file [" + path.string() + "]");
    EXPECT_EQ(facts.problem, DriversWords(path));
    EXPECT_EQ(facts.size, 0u);
}

TEST(ProfileLoading, RefusesAFolder) {
    const ScratchFolder scratch;
    const ProfileFacts facts = LoadIntoDriver(scratch.Path(), PrintVariant::kOther);
    EXPECT_EQ(facts.problem, DriversWords(scratch.Path()));
    EXPECT_EQ(facts.size, 0u);
}

TEST(ProfileLoading, GivesTheDriversOwnReasonWhenTheColorsCanNotBeRead) {
    const ScratchFolder scratch;
    const std::filesystem::path path = scratch.Write("sound.zvp", FileWithTags(Tag(1, "Sound")));
    const ImportPatch failure(nullptr, "SetFilePointerEx", reinterpret_cast<void*>(&FailToSeek));
    EXPECT_THAT(
        [&] { LoadAccepted(path, PrintVariant::kOther); },
        testing::ThrowsMessage<std::runtime_error>(path.string() + ": error reading profile 0<>19652"));
}

TEST(ProfileLoading, TakesTheLastTagOfAKind) {
    const ScratchFolder scratch;
    const std::string tags = Tag(2, "\x01\x02") + Tag(1, "First") + Tag(1, "Last") + Tag(2, "\xFF\x03");
    const std::filesystem::path path = scratch.Write("tags.zvp", FileWithTags(tags));
    const ProfileFacts facts = LoadIntoDriver(path, PrintVariant::kOther);
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

TEST(ProfileLoading, AcceptsAFileWithASingleTag) {
    const ScratchFolder scratch;
    const ProfileFacts named =
        LoadIntoDriver(scratch.Write("a.zvp", FileWithTags(Tag(1, ""))), PrintVariant::kOther);
    EXPECT_TRUE(named.Accepted());
    EXPECT_EQ(named.Name(), "");
    EXPECT_EQ(named.Codes(), std::nullopt);
    const ProfileFacts coded =
        LoadIntoDriver(scratch.Write("b.zvp", FileWithTags(Tag(2, "\x05\x06"))), PrintVariant::kOther);
    EXPECT_TRUE(coded.Accepted());
    EXPECT_EQ(coded.Name(), std::nullopt);
    EXPECT_EQ(coded.Codes(), (ResolutionCodes{5, 6}));
}

TEST(ProfileLoading, KeepsTheTagsThatPrecedeAProblem) {
    const ScratchFolder scratch;
    const ProfileFacts facts = LoadIntoDriver(
        scratch.Write("c.zvp", FileWithTags(Tag(1, "Kept") + Tag(7, "?"))), PrintVariant::kOther);
    EXPECT_EQ(facts.problem, "invalid profile tag 7");
    EXPECT_EQ(facts.Name(), "Kept");
    EXPECT_EQ(facts.tags.size(), 2u);
    EXPECT_EQ(facts.dataOffset, 0u);
}

}  // namespace

}  // namespace orvex::tools::profile
