#include "driver/config/device_mode_defaults.h"

#include "driver/support/log.h"
#include "driver/support/text.h"
#include "tests/driver/config/foreign_dev_mode.h"
#include "tests/driver/config/printer_test.h"
#include "tests/driver/failing_calls.h"
#include "tests/kit/allocation_failure.h"
#include "tests/plain/device_mode.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using plain::DefaultDeviceMode;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// Passes on the first search for files, which measures the list, and fails the second, which fills it.
int searches = 0;
decltype(&FindFirstFileW) findFirst = nullptr;
HANDLE WINAPI FailSecondSearch(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
    return ++searches == 2 ? INVALID_HANDLE_VALUE : findFirst(pattern, data);
}

class DefaultDevMode : public PrinterTest {
  protected:
    DeviceMode SetUpDefaults(const WCHAR* name = L"Etikett 1") {
        DeviceMode record;
        memset(static_cast<void*>(&record), 0xAA, sizeof record);
        EXPECT_TRUE(SetupDefaultDevMode(&record, name, handle_));
        return record;
    }

    // Gives the printer two labels and lets settings.inf ask for one.
    void SetMedia(const std::string& wanted) {
        AddLabel(258, "Klein", "50", "25.4", 0);
        AddLabel(300, "Versand", "4", "6", 1);
        installation_.WriteSettings("[UI]\r\nDefault_Media=" + wanted + "\r\n");
    }
};

class DefaultMedia : public DefaultDevMode {
  protected:
    struct Media {
        std::string name, width, length;
        uint32_t units;
        int number;
    };

    Media Choose() {
        char name[64], width[8], length[8];
        uint32_t units = 77;
        int16_t number = 4711;
        EXPECT_EQ(ChooseDefaultMedia(handle_, name, width, length, &units, &number), 1);
        return {name, width, length, units, number};
    }

    void ExpectBuiltIn() {
        const Media media = Choose();
        EXPECT_EQ(media.name, "A4");
        EXPECT_EQ(media.width, "8.500");
        EXPECT_EQ(media.length, "11.000");
        EXPECT_EQ(media.units, 1u);
        EXPECT_EQ(media.number, 4711) << "the number is the caller's";
    }
};

class DefaultProfile : public DefaultDevMode {
  protected:
    DefaultProfile() {
        installation_.Write("profiles/a.zvp", "");
        installation_.Write("profiles/b.zvp", "");
    }

    std::u16string Assign() {
        WCHAR profile[kMaxProfileName];
        CopyText(profile, FieldText(L"before"));
        EXPECT_TRUE(AssignDefaultColorProfile(handle_, profile));
        return Text(profile);
    }

    // Returns the log's lines about the search for the wanted profile.
    std::vector<std::string> SearchLines() {
        std::vector<std::string> kept;
        for (const std::string& line : log_.TakeLines()) {
            if (line.starts_with("[Trace] def Profile") || line.find("] <> [") != std::string::npos)
                kept.push_back(line);
        }
        return kept;
    }
};

}  // namespace

TEST_F(DefaultDevMode, EveryByteWithoutAnInstallationIsTheBuiltInDefault) {
    DeviceMode expected = DefaultDeviceMode();
    EXPECT_TRUE(SameRecord(SetUpDefaults(nullptr), expected)) << "without a name";
    CopyText(expected.pub.dmDeviceName, FieldText(L"Etikett 1"));
    EXPECT_TRUE(SameRecord(SetUpDefaults(), expected));
}

TEST_F(DefaultDevMode, APrintersNameIsCutToItsField) {
    const HeapArray<WCHAR> name = AllocateArray<WCHAR>(32);
    std::fill(name.get(), name.get() + 32, L'n');
    EXPECT_EQ(Text(SetUpDefaults(name.get()).pub.dmDeviceName), std::u16string(31, u'n'))
        << "and is read no further than its field is long";
}

TEST_F(DefaultDevMode, ItsStepsAreTraced) {
    SetUpDefaults();
    const std::vector<std::string> lines = LinesOutside("AssignDefaultColorProfile");
    EXPECT_THAT(lines, ElementsAre("[Trace] <SetupDefaultDevMode>", StartsWith("[Trace] get app path "),
                                   "[Error] failed to open media.inf", "[Error] failed to open settings.inf",
                                   "[Trace] colorProfile:[]", "[Trace] Return: TRUE",
                                   "[Trace] </SetupDefaultDevMode>"));
    EXPECT_THAT(lines[1], testing::EndsWith("\\Quorvane\\Orvex Series"));
}

TEST_F(DefaultDevMode, AnUnknownInstallationFolderIsLoggedWithoutItsNot) {
    const ImportPatch shell(nullptr, "SHGetSpecialFolderPathW", reinterpret_cast<void*>(&FindNoFolder));
    EXPECT_TRUE(SameRecord(SetUpDefaults(nullptr), DefaultDeviceMode()));
    EXPECT_THAT(LinesOutside("AssignDefaultColorProfile"),
                ElementsAre("[Trace] <SetupDefaultDevMode>", "[Error] Error: could get app path",
                            "[Error] failed to open settings.inf", "[Trace] colorProfile:[]",
                            "[Trace] Return: TRUE", "[Trace] </SetupDefaultDevMode>"));
}

TEST_F(DefaultDevMode, AChangedLogMaskTakesEffectBeforeTheFirstLine) {
    WriteBytes(LogControlFile(), "0");
    SetUpDefaults();
    EXPECT_EQ(logMask, 0u);
    EXPECT_THAT(log_.TakeLines(), IsEmpty());
    WriteBytes(LogControlFile(), "2");
    SetUpDefaults();
    EXPECT_EQ(log_.TakeLines()[0], "[Trace] <SetupDefaultDevMode>");
}

TEST_F(DefaultDevMode, ADefaultLabelBringsBothHalvesInLine) {
    SetMedia("Versand");
    DeviceMode expected = DefaultDeviceMode();
    expected.pub.dmPaperSize = expected.priv.dmPaperSize = 300;
    expected.pub.dmPaperLength = 1524;
    expected.pub.dmPaperWidth = 1016;
    expected.priv.units = 1;
    CopyText(expected.priv.labelName, "Versand");
    memcpy(expected.priv.width_string,
           "4\0"
           "500",
           6);  // the end of the built-in size remains
    memcpy(expected.priv.length_string, "6\0.000", 7);
    EXPECT_TRUE(SameRecord(SetUpDefaults(nullptr), expected));
    EXPECT_THAT(log_.TakeLines(), testing::Contains("[Trace] set pdm paper 300 1016 1524"));
}

TEST_F(DefaultDevMode, ADefaultLabelWithTheBuiltInNumberLeavesThePublicSize) {
    AddLabel(257, "Versand", "4", "6", 1);
    installation_.WriteSettings("[UI]\r\nDefault_Media=Versand\r\n");
    const DeviceMode record = SetUpDefaults();
    EXPECT_STREQ(record.priv.width_string, "4");
    EXPECT_EQ(record.pub.dmPaperSize, 257);
    EXPECT_EQ(record.pub.dmPaperWidth, 2794);
    EXPECT_EQ(record.pub.dmPaperLength, 2159);
}

TEST_F(DefaultDevMode, LabelTextsThatAreNoNumbersAreSizesOfZero) {
    AddLabel(258, "Versand", "wide", "1e3", 0);
    installation_.WriteSettings("[UI]\r\nDefault_Media=Versand\r\n");
    const DeviceMode record = SetUpDefaults();
    EXPECT_EQ(record.pub.dmPaperSize, 258);
    EXPECT_EQ(record.pub.dmPaperWidth, 0);
    EXPECT_EQ(record.pub.dmPaperLength, 0);
}

TEST_F(DefaultDevMode, TheFirstSetUpImportsTheLabelsThatItMayChooseFrom) {
    installation_.Write("media.inf",
                        "[Media]\r\n\"Klein\",\"50\",\"25.4\",0\r\n\"Versand\",\"4\",\"6\",1\r\n");
    installation_.WriteSettings("[UI]\r\nDefault_Media=Versand\r\n");
    const DeviceMode record = SetUpDefaults();
    EXPECT_EQ(record.pub.dmPaperSize, 259);
    EXPECT_EQ(record.priv.dmPaperSize, 259);
    EXPECT_EQ(record.pub.dmPaperWidth, 1016);
    EXPECT_THAT(printer_.data.SubKeys("Label Sizes"), ElementsAre("258", "259"));
}

TEST_F(DefaultMedia, IsTheBuiltInOneWithoutASetting) {
    ExpectBuiltIn();
    installation_.WriteSettings("[Driver]\r\nDefault_Media=Versand\r\n");
    ExpectBuiltIn();
}

TEST_F(DefaultMedia, IsTheLabelThatTheSettingNames) {
    SetMedia("Versand");
    const Media media = Choose();
    EXPECT_EQ(media.name, "Versand");
    EXPECT_EQ(media.width, "4");
    EXPECT_EQ(media.length, "6");
    EXPECT_EQ(media.units, 1u);
    EXPECT_EQ(media.number, 300);
    EXPECT_THAT(LinesOutside("ReadPrinterLabelList"),
                ElementsAre("[Trace] def media:[Versand]", "[Trace] 0/2:[Versand] <> [Klein]",
                            "[Trace] 1/2:[Versand] <> [Versand]", "[Trace] media [Versand]"));
}

TEST_F(DefaultMedia, TheFirstOfEqualNamesCounts) {
    SetMedia("Versand");
    AddLabel(299, "Versand", "1", "2", 0);
    EXPECT_EQ(Choose().number, 299);
    EXPECT_THAT(LinesOutside("ReadPrinterLabelList"),
                ElementsAre("[Trace] def media:[Versand]", "[Trace] 0/3:[Versand] <> [Klein]",
                            "[Trace] 1/3:[Versand] <> [Versand]", "[Trace] media [Versand]"));
}

TEST_F(DefaultMedia, BlanksAroundTheSettingAreCut) {
    SetMedia(" \tVersand  ");
    EXPECT_EQ(Choose().number, 300);
}

TEST_F(DefaultMedia, BlanksAroundAListedNameAreNot) {
    AddLabel(258, "Versand ", "4", "6", 1);
    installation_.WriteSettings("[UI]\r\nDefault_Media=Versand \r\n");
    ExpectBuiltIn();
}

TEST_F(DefaultMedia, NamesAreCaseSensitive) {
    SetMedia("versand");
    ExpectBuiltIn();
}

TEST_F(DefaultMedia, AListThatCannotBeReadLeavesTheBuiltInOne) {
    SetMedia("Versand");
    spooler_.FailCall("EnumPrinterKeyW", 1, ERROR_ACCESS_DENIED);
    ExpectBuiltIn();
    EXPECT_THAT(LinesOutside("ReadPrinterLabelList"), ElementsAre("[Trace] def media:[Versand]"));
}

TEST_F(DefaultMedia, NamesThatFillTheirFieldAreFound) {
    const std::string name(63, 'n');
    AddLabel(258, name.c_str(), "1234567", "7654321", 9);
    installation_.WriteSettings("[UI]\r\nDefault_Media=" + name + "\r\n");
    const Media media = Choose();
    EXPECT_EQ(media.name, name);
    EXPECT_EQ(media.width, "1234567");
    EXPECT_EQ(media.length, "7654321");
    EXPECT_EQ(media.units, 9u);
}

TEST_F(DefaultProfile, IsTheFirstOneWithoutASetting) {
    EXPECT_EQ(Assign(), u"a.zvp");
    EXPECT_THAT(SearchLines(), IsEmpty());
}

TEST_F(DefaultProfile, IsTheOneThatTheSettingNames) {
    installation_.WriteSettings("[UI]\r\nDefault_Profile= b.zvp \r\n");
    EXPECT_EQ(Assign(), u"b.zvp");
    EXPECT_THAT(SearchLines(), ElementsAre("[Trace] def Profile:[b.zvp]", "[Trace] [b.zvp] <> [a.zvp]",
                                           "[Trace] [b.zvp] <> [b.zvp]"));
}

TEST_F(DefaultProfile, IsTheFirstOneWhenTheSettingNamesNone) {
    for (const char* wanted : {"B.zvp", "b.zv", "b.zvp2", "", "  "}) {
        installation_.WriteSettings("[UI]\r\nDefault_Profile=" + std::string(wanted) + "\r\n");
        EXPECT_EQ(Assign(), u"a.zvp") << wanted;
    }
    EXPECT_THAT(SearchLines(), testing::Contains("[Trace] [B.zvp] <> [b.zvp]"));
}

TEST_F(DefaultProfile, IsTheFirstOneWhenOutOfMemoryForTheSetting) {
    installation_.WriteSettings("[UI]\r\nDefault_Profile=b.zvp\r\n");
    const AllocationFailure memory(sizeof u"b.zvp");
    EXPECT_EQ(Assign(), u"a.zvp");
    EXPECT_EQ(memory.Count(), 1);
    EXPECT_THAT(SearchLines(), IsEmpty());
}

TEST_F(DefaultProfile, StaysAsItIsWhenNoneIsInstalled) {
    std::filesystem::remove_all(installation_.Folder() / "profiles");
    installation_.WriteSettings("[UI]\r\nDefault_Profile=b.zvp\r\n");
    EXPECT_EQ(Assign(), u"before");
    EXPECT_THAT(SearchLines(), ElementsAre("[Trace] def Profile:[b.zvp]"));
}

TEST_F(DefaultProfile, StaysAsItIsWhenThePrinterHasNoName) {
    spooler_.FailCall("GetPrinterW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Assign(), u"before");
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Trace] <AssignDefaultColorProfile>",
                                              "[Error] GetPrinterName: GetPrinter failed: 0x5",
                                              "[Trace] </AssignDefaultColorProfile>"));
}

TEST_F(DefaultProfile, StaysAsItIsWhenTheCatalogueFails) {
    installation_.WriteSettings("[UI]\r\nDefault_Profile=b.zvp\r\n");
    searches = 0;
    const ImportPatch search(nullptr, "FindFirstFileW", reinterpret_cast<void*>(&FailSecondSearch));
    findFirst = reinterpret_cast<decltype(findFirst)>(search.Original());
    EXPECT_EQ(Assign(), u"before");
    EXPECT_EQ(searches, 2);
    EXPECT_THAT(SearchLines(), IsEmpty());
}

TEST_F(DefaultProfile, IsPartOfTheDefaultRecord) {
    installation_.WriteSettings("[UI]\r\nDefault_Profile=b.zvp\r\n");
    EXPECT_EQ(Text(SetUpDefaults().priv.colorProfile), u"b.zvp");
    EXPECT_THAT(log_.TakeLines(), testing::Contains("[Trace] colorProfile:[b.zvp]"));
}

}  // namespace orvex
