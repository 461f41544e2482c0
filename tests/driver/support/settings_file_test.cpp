#include "driver/support/settings_file.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "driver/support/handle.h"
#include "driver/support/installation.h"
#include "tests/driver/failing_calls.h"
#include "tests/kit/allocation_failure.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_view_literals;

namespace {

constexpr size_t kPiece = 253;  // bytes of a line that are read at a time

class SettingsFile : public testing::Test {
  protected:
    // Returns the value of "Key=" in "[UI]" out of a buffer of exactly `capacity` bytes.
    std::string Value(size_t capacity = 254) {
        const HeapArray<char> out = AllocateArray<char>(capacity);
        memset(out.get(), 'x', capacity);
        const size_t length = LookupString("[UI]", "Key=", out.get(), capacity);
        const std::string text = out.get();
        EXPECT_EQ(length, text.size());
        return text;
    }

    struct Case {
        std::string settings, value;
        Case(std::string_view text, std::string_view found) : settings(text), value(found) {}
    };
    void ExpectValues(std::initializer_list<Case> cases, size_t capacity = 254) {
        for (const Case& each : cases) {
            installation_.WriteSettings(each.settings);
            EXPECT_EQ(Value(capacity), each.value) << each.settings;
        }
    }

    InstallationFixture installation_;
};

}  // namespace

TEST_F(SettingsFile, AValueIsTheRestOfItsLineWithTheLineEnd) {
    ExpectValues({{"[UI]\r\nKey=some value \r\n", "some value \r\n"},
                  {"[UI]\nA=1\nKey=lf\n", "lf\n"},
                  {"[UI]\rA=1\rKey=cr\rB=2\r", "cr\r"},
                  {"[UI]\rA=1\nKey=mixed\r\nB=2", "mixed\r\n"},
                  {"[UI]\r\nKey=last", "last"},
                  {"[UI]\nKey=~a~[b]=\"\n", "~a~[b]=\"\n"},
                  {"[UI]\nKey=one\nKey=two\n", "one\n"}});
}

TEST_F(SettingsFile, AnEmptyValueIsItsLineEndAndNotFoundAtTheFilesEnd) {
    ExpectValues({{"[UI]\r\nKey=\r\nKey=second\r\n", "\r\n"}, {"[UI]\r\nKey=", ""}});
}

TEST_F(SettingsFile, AValueEndsBeforeAZeroByte) {
    ExpectValues({{"[UI]\nKey=ab\0cd\nKey=\0\nOther=1\n"sv, "ab"},
                  {"[UI]\nKey=\0\nKey=second\n"sv, "second\n"}});  // a value of no length is skipped
}

TEST_F(SettingsFile, KeysAreFoundInTheFirstSectionOfThatNameOnly) {
    ExpectValues({{"Key=before\n[Driver]\nKey=driver\n[UI]\nOther=1\n[Color]\nKey=color\n", ""},
                  {"[Driver]\nKey=driver\n[UI]\nKey=ui\n", "ui\n"},
                  {"[Driver]\nKey=driver\n", ""},
                  {"[UI] what users see\nKey=found\n", "found\n"},
                  {"[UI]\nOther=1\n[UI]\nKey=second\n", ""}});
}

TEST_F(SettingsFile, SectionsAndKeysAreComparedByteForByte) {
    ExpectValues({{"[ui]\nKey=wrong section\n", ""},
                  {"[UI]\nkey=wrong key\nKey=right\n", "right\n"},
                  {"[UI]\n Key=1\nKey =2\n\tKey=3\n", ""},
                  {"[UI]\nKey= 4\n", " 4\n"}});  // a blank after the equals sign belongs to the value
}

TEST_F(SettingsFile, AValueThatFillsTheBufferCountsAsCutAndGivesWayToALaterOne) {
    ExpectValues({{"[UI]\nKey=abcd\nKey=z\n", "abcd\n"},
                  {"[UI]\nKey=abcde\nKey=z\n", "z\n"},
                  {"[UI]\nKey=abcdefgh\n", "abcdef"},
                  {"[UI]\nKey=abcdefgh\nKey=ABCDEFGH\nOther=1\n[Color]\nKey=x\n", "ABCDEF"},
                  {"[UI]\nKey=abcdefgh\nKey=", "abcdef"}},  // an empty value does not replace it
                 7);
}

TEST_F(SettingsFile, ABufferOfOneByteHasNoRoomForAValue) {
    ExpectValues({{"[UI]\nKey=abc\n", ""}}, 1);
}

TEST_F(SettingsFile, ABufferOfNoBytesIsNotWrittenTo) {
    installation_.WriteSettings("[UI]\nKey=abc\n");
    char out = 'x';
    EXPECT_EQ(LookupString("[UI]", "Key=", &out, 0), 0u);
    EXPECT_EQ(out, 'x');
}

TEST_F(SettingsFile, ALongLineIsReadInPiecesAndTheByteAfterEachIsSkipped) {
    const std::string filler(kPiece, '#'), value(300, 'v');
    ExpectValues({{"[UI]\n" + filler + "?Key=second piece\n", "second piece\n"},
                  {"[UI]\n" + filler + "Key=\n" + "ey=not it\n", ""},  // the key's first byte is skipped
                  {"[UI]\n" + filler + "?" + filler + "?Key=third piece\n", "third piece\n"},
                  {"[UI]\n" + filler + "\nKey=next line\n", "next line\n"},
                  {"[UI]\n" + filler + "\r\nKey=next line\n", "next line\n"},
                  // The line feed after a piece's last byte is a line of its own.
                  {"[UI]\n" + std::string(kPiece - 1, '#') + "\r\nKey=after\n", "after\n"},
                  {"[UI]\nKey=" + value + "\n", std::string(kPiece - 4, 'v')},
                  {"[UI]\n" + filler + "?[ rest of the line\nKey=unseen\n", ""}},  // the section ends there
                 400);
}

TEST_F(SettingsFile, EveryByteValueIsReadWithoutHarm) {
    std::string bytes = "[UI]\n";
    for (int i = 0; i < 4096; ++i) bytes += static_cast<char>(i * 37 + i / 256);
    installation_.WriteSettings(bytes);
    EXPECT_EQ(Value(), "");
}

TEST_F(SettingsFile, AMissingFileIsAnErrorLineAndNotFound) {
    LogCapture log;
    EXPECT_EQ(Value(), "");
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] failed to open settings.inf"));
}

TEST_F(SettingsFile, ALockedFileReadsAsAMissingOne) {
    installation_.WriteSettings("[UI]\nKey=1\n");
    LogCapture log;
    const OwnedHandle writer(CreateFileA((installation_.Folder() / "settings.inf").string().c_str(),
                                         GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                         nullptr));
    ASSERT_TRUE(writer);
    EXPECT_EQ(Value(), "");
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] failed to open settings.inf"));
}

TEST_F(SettingsFile, TheErrorLineIsWrittenOnlyWhenErrorsAreLogged) {
    LogCapture log(2);
    EXPECT_EQ(Value(), "");
    EXPECT_THAT(log.TakeLines(), IsEmpty());
}

TEST_F(SettingsFile, AnUnknownInstallationFolderReadsAsAMissingFile) {
    installation_.WriteSettings("[UI]\nKey=1\n");
    LogCapture log;
    const ImportPatch shell(nullptr, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&FindNoFolder));
    EXPECT_EQ(Value(), "");
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] failed to open settings.inf"));
}

TEST_F(SettingsFile, RunningOutOfMemoryForThePathReadsAsAMissingFile) {
    installation_.WriteSettings("[UI]\nKey=1\n");
    LogCapture log;
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    size_t length = 0;
    while (folder[length] != 0) ++length;
    const AllocationFailure memory((length + sizeof "\\settings.inf") * sizeof(WCHAR));
    EXPECT_EQ(Value(), "");
    EXPECT_EQ(memory.Count(), 1);
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] failed to open settings.inf"));
}

TEST_F(SettingsFile, AFileThatCannotBeReadHoldsNothing) {
    installation_.WriteSettings("[UI]\nKey=1\n");
    const ImportPatch files(nullptr, "ReadFile", reinterpret_cast<void*>(&FailToRead));
    EXPECT_EQ(Value(), "");
}

TEST_F(SettingsFile, AFileThatCannotBeMovedInEndsTheSearch) {
    // The next piece would begin with the key if the file were not moved in.
    const std::string section = "[UI]\n";
    installation_.WriteSettings(section + std::string(kPiece - section.size(), '\n') + "Key=1\n");
    EXPECT_EQ(Value(), "1\n");
    const ImportPatch files(nullptr, "SetFilePointerEx", reinterpret_cast<void*>(&FailToSeek));
    EXPECT_EQ(Value(), "");
}

TEST_F(SettingsFile, AChangedFileTakesEffectAtOnce) {
    installation_.WriteSettings("[UI]\nKey=1\n");
    EXPECT_EQ(Value(), "1\n");
    installation_.WriteSettings("[UI]\nKey=2\n");
    EXPECT_EQ(Value(), "2\n") << "and the file was closed, so that it could be written";
}

TEST_F(SettingsFile, AFlagIsOnWhenItsNumberIsAboveZero) {
    const struct {
        const char* value;
        int flag;
    } kCases[] = {{"0", 0},   {"-1", 0},           {"1", 1},  {"7", 1}, {" 1", 1},
                  {"yes", 0}, {"+2", 1},           {"1x", 1}, {"", 0},  {"99999999999", 1},
                  {"0.9", 0}, {"-99999999999", 0}, {"a", 0}};
    for (const auto& each : kCases) {
        installation_.WriteSettings("[Driver]\r\nAdd_Thumb=" + std::string(each.value) + "\r\n");
        EXPECT_EQ(LookupFlag("[Driver]", "Add_Thumb="), each.flag) << each.value;
        installation_.WriteSettings("[Driver]\r\nAdd_Thumb=" + std::string(each.value));
        EXPECT_EQ(LookupFlag("[Driver]", "Add_Thumb="), each.flag) << each.value << " at the file's end";
    }
}

TEST_F(SettingsFile, EveryFlagThatIsLookedUpIsLogged) {
    installation_.WriteSettings("[Driver]\r\nAdd_Thumb=7\r\n");
    LogCapture log;
    EXPECT_EQ(LookupFlag("[Driver]", "Add_Thumb="), 1);
    EXPECT_EQ(LookupFlag("[UI]", "Show_Chunked="), 0) << "an absent key is off";
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Info]  [Driver]:Add_Thumb=:1", "[Info]  [UI]:Show_Chunked=:0"));
}

TEST_F(SettingsFile, AFlagOfAMissingFileIsOff) {
    LogCapture log;
    EXPECT_EQ(LookupFlag("[Driver]", "Add_Thumb="), 0);
    EXPECT_THAT(log.TakeLines(),
                ElementsAre("[Error] failed to open settings.inf", "[Info]  [Driver]:Add_Thumb=:0"));
}

TEST_F(SettingsFile, ANumberIsReadUpToTheFirstOtherCharacter) {
    installation_.WriteSettings(
        "[Color]\r\ntone_scale=12.5\r\nblack_scale=-3e1 percent\r\ncyan_scale=none\r\n");
    EXPECT_EQ(LookupNumber("[Color]", "tone_scale=", 100), 12.5);
    EXPECT_EQ(LookupNumber("[Color]", "black_scale=", 200), -30);
    EXPECT_EQ(LookupNumber("[Color]", "cyan_scale=", 100), 0) << "a value that is no number reads as 0";
    installation_.WriteSettings("[Color]\r\ntone_scale=7");
    EXPECT_EQ(LookupNumber("[Color]", "tone_scale=", 100), 7) << "a digit that ends the file";
}

TEST_F(SettingsFile, AnAbsentNumberIsTheGivenDefaultAndIsNotLogged) {
    installation_.WriteSettings("[Driver]\r\nthumb_max_width = 400\r\n");
    LogCapture log;
    EXPECT_EQ(LookupNumber("[Driver]", "thumb_max_width=", 800), 800);
    EXPECT_EQ(LookupNumber("[Driver]", "thumb_max_height=", 600), 600);
    EXPECT_THAT(log.TakeLines(), IsEmpty());
}

}  // namespace orvex
