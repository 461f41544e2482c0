#include "driver/support/settings_file.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "driver/support/handle.h"
#include "driver/support/installation.h"
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

BOOL WINAPI NoFolder(HWND, LPWSTR, int, BOOL) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI FailToRead(HANDLE, LPVOID, DWORD, LPDWORD read, LPOVERLAPPED) {
    *read = 0;
    return FALSE;
}

BOOL WINAPI FailToSeek(HANDLE, LARGE_INTEGER, PLARGE_INTEGER, DWORD) {
    return FALSE;
}

class SettingsFile : public testing::Test {
  protected:
    // Returns the value of `key` in "[UI]" out of a buffer of exactly `capacity` bytes.
    std::string Value(const char* key = "Key=", size_t capacity = 254) {
        const HeapArray<char> out = AllocateArray<char>(capacity);
        memset(out.get(), 'x', capacity);
        const size_t length = LookupString("[UI]", key, out.get(), capacity);
        const std::string text = out.get();
        EXPECT_EQ(length, text.size());
        return text;
    }

    InstallationFixture installation_;
};

}  // namespace

TEST_F(SettingsFile, AValueIsTheRestOfItsLineWithTheLineEnd) {
    installation_.WriteSettings("[UI]\r\nKey=some value \r\n");
    EXPECT_EQ(Value(), "some value \r\n");
}

TEST_F(SettingsFile, LineFeedsAndCarriageReturnsEndLinesToo) {
    installation_.WriteSettings("[UI]\nA=1\nKey=lf\n");
    EXPECT_EQ(Value(), "lf\n");
    installation_.WriteSettings("[UI]\rA=1\rKey=cr\rB=2\r");
    EXPECT_EQ(Value(), "cr\r");
    installation_.WriteSettings("[UI]\rA=1\nKey=mixed\r\nB=2");
    EXPECT_EQ(Value(), "mixed\r\n");
}

TEST_F(SettingsFile, TheLastLineNeedsNoEnd) {
    installation_.WriteSettings("[UI]\r\nKey=last");
    EXPECT_EQ(Value(), "last");
}

TEST_F(SettingsFile, AnEmptyValueAtTheFilesEndIsNotFound) {
    installation_.WriteSettings("[UI]\r\nKey=");
    EXPECT_EQ(Value(), "");
}

TEST_F(SettingsFile, AnEmptyValueElsewhereIsItsLineEnd) {
    installation_.WriteSettings("[UI]\r\nKey=\r\nKey=second\r\n");
    EXPECT_EQ(Value(), "\r\n");
}

TEST_F(SettingsFile, AValueEndsBeforeAZeroByte) {
    installation_.WriteSettings("[UI]\nKey=ab\0cd\nKey=\0\nOther=1\n"sv);
    EXPECT_EQ(Value(), "ab");
    installation_.WriteSettings("[UI]\nKey=\0\nKey=second\n"sv);
    EXPECT_EQ(Value(), "second\n") << "a value of no length is skipped";
}

TEST_F(SettingsFile, TheFirstValueThatFitsCounts) {
    installation_.WriteSettings("[UI]\nKey=one\nKey=two\n");
    EXPECT_EQ(Value(), "one\n");
}

TEST_F(SettingsFile, KeysAreFoundInTheirSectionOnly) {
    installation_.WriteSettings("Key=before\n[Driver]\nKey=driver\n[UI]\nOther=1\n[Color]\nKey=color\n");
    EXPECT_EQ(Value(), "");
    installation_.WriteSettings("[Driver]\nKey=driver\n[UI]\nKey=ui\n");
    EXPECT_EQ(Value(), "ui\n");
}

TEST_F(SettingsFile, AnAbsentSectionIsNotFound) {
    installation_.WriteSettings("[Driver]\nKey=driver\n");
    EXPECT_EQ(Value(), "");
}

TEST_F(SettingsFile, TextAfterTheSectionsNameIsAllowed) {
    installation_.WriteSettings("[UI] what users see\nKey=found\n");
    EXPECT_EQ(Value(), "found\n");
}

TEST_F(SettingsFile, ASecondSectionOfTheSameNameIsNeverReached) {
    installation_.WriteSettings("[UI]\nOther=1\n[UI]\nKey=second\n");
    EXPECT_EQ(Value(), "");
}

TEST_F(SettingsFile, SectionsAndKeysAreCaseSensitive) {
    installation_.WriteSettings("[ui]\nKey=wrong section\n");
    EXPECT_EQ(Value(), "");
    installation_.WriteSettings("[UI]\nkey=wrong key\nKey=right\n");
    EXPECT_EQ(Value(), "right\n");
}

TEST_F(SettingsFile, BlanksBeforeTheKeyOrAroundTheEqualsSignDoNotMatch) {
    installation_.WriteSettings("[UI]\n Key=1\nKey =2\n\tKey=3\n");
    EXPECT_EQ(Value(), "");
    installation_.WriteSettings("[UI]\nKey= 4\n");
    EXPECT_EQ(Value(), " 4\n") << "a blank after the equals sign belongs to the value";
}

TEST_F(SettingsFile, AValueOneByteShorterThanItsRoomIsWhole) {
    installation_.WriteSettings("[UI]\nKey=abcd\nKey=z\n");
    EXPECT_EQ(Value("Key=", 7), "abcd\n");
}

TEST_F(SettingsFile, AValueThatFillsTheBufferIsReplacedByALaterOne) {
    installation_.WriteSettings("[UI]\nKey=abcde\nKey=z\n");
    EXPECT_EQ(Value("Key=", 7), "z\n") << "six bytes in seven are whole, but count as cut";
}

TEST_F(SettingsFile, ALongerValueIsCutAndReportsWhatWasStored) {
    installation_.WriteSettings("[UI]\nKey=abcdefgh\n");
    EXPECT_EQ(Value("Key=", 7), "abcdef");
}

TEST_F(SettingsFile, TheLastOfSeveralCutValuesCounts) {
    installation_.WriteSettings("[UI]\nKey=abcdefgh\nKey=ABCDEFGH\nOther=1\n[Color]\nKey=x\n");
    EXPECT_EQ(Value("Key=", 7), "ABCDEF");
}

TEST_F(SettingsFile, AnEmptyValueDoesNotReplaceOneThatWasCut) {
    installation_.WriteSettings("[UI]\nKey=abcdefgh\nKey=");
    EXPECT_EQ(Value("Key=", 7), "abcdef");
}

TEST_F(SettingsFile, AValueMayContainAnyCharacter) {
    installation_.WriteSettings("[UI]\nKey=~a~[b]=\"\n");
    EXPECT_EQ(Value(), "~a~[b]=\"\n");
}

TEST_F(SettingsFile, ABufferOfOneByteHasNoRoomForAValue) {
    installation_.WriteSettings("[UI]\nKey=abc\n");
    EXPECT_EQ(Value("Key=", 1), "");
}

TEST_F(SettingsFile, ABufferOfNoBytesIsNotWrittenTo) {
    installation_.WriteSettings("[UI]\nKey=abc\n");
    char out = 'x';
    EXPECT_EQ(LookupString("[UI]", "Key=", &out, 0), 0u);
    EXPECT_EQ(out, 'x');
}

TEST_F(SettingsFile, ALongLineIsReadInPiecesAndTheByteAfterEachIsSkipped) {
    const std::string filler(kPiece, '#');
    installation_.WriteSettings("[UI]\n" + filler + "?Key=second piece\n");
    EXPECT_EQ(Value(), "second piece\n");
    installation_.WriteSettings("[UI]\n" + filler + "Key=\n" + "ey=not it\n");
    EXPECT_EQ(Value(), "") << "the skipped byte is the key's first";
    installation_.WriteSettings("[UI]\n" + filler + "?" + filler + "?Key=third piece\n");
    EXPECT_EQ(Value(), "third piece\n");
}

TEST_F(SettingsFile, ALineEndAfterAFullPieceIsTheSkippedByte) {
    const std::string filler(kPiece, '#');
    installation_.WriteSettings("[UI]\n" + filler + "\nKey=next line\n");
    EXPECT_EQ(Value(), "next line\n");
    installation_.WriteSettings("[UI]\n" + filler + "\r\nKey=next line\n");
    EXPECT_EQ(Value(), "next line\n");
}

TEST_F(SettingsFile, ACarriageReturnAsTheLastByteOfAPieceLeavesItsLineFeedAsALineOfItsOwn) {
    installation_.WriteSettings("[UI]\n" + std::string(kPiece - 1, '#') + "\r\nKey=after\n");
    EXPECT_EQ(Value(), "after\n");
}

TEST_F(SettingsFile, ALongValueEndsWithItsPiece) {
    const std::string value(300, 'v');
    installation_.WriteSettings("[UI]\nKey=" + value + "\n");
    EXPECT_EQ(Value("Key=", 400), std::string(kPiece - 4, 'v'));
}

TEST_F(SettingsFile, APieceThatBeginsWithABracketEndsTheSection) {
    installation_.WriteSettings("[UI]\n" + std::string(kPiece, '#') + "?[ rest of the line\nKey=unseen\n");
    EXPECT_EQ(Value(), "");
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
    const ImportPatch shell(nullptr, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&NoFolder));
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
