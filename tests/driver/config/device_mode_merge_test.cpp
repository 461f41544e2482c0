#include "driver/config/device_mode_merge.h"

#include "driver/support/text.h"
#include "tests/driver/config/foreign_dev_mode.h"
#include "tests/driver/config/printer_test.h"
#include "tests/kit/allocation_failure.h"
#include "tests/plain/device_mode.h"

namespace orvex {

using namespace tools;
using plain::DefaultDeviceMode;
using plain::ValidDeviceMode;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;

namespace {

class Merging : public PrinterTest {
  protected:
    // Returns the printer's record with a label of its list chosen on it.
    static DeviceMode RecordWithLabel(int16_t number = 300) {
        DeviceMode record = ValidDeviceMode();
        record.pub.dmPaperSize = number;
        record.pub.dmPaperWidth = 1016;
        record.pub.dmPaperLength = 1524;
        record.priv.dmPaperSize = number;
        record.priv.units = 0;
        CopyText(record.priv.labelName, "Versand");
        CopyText(record.priv.width_string, "101.6");
        CopyText(record.priv.length_string, "152.4");
        return record;
    }

    // Returns `destination` after `source` was merged into it; nothing is logged.
    DeviceMode Merged(DeviceMode destination, DEVMODEW* source) {
        const LogCapture quiet(0);
        EXPECT_TRUE(MergeDevMode(&destination, source, handle_));
        return destination;
    }
    DeviceMode Merged(DeviceMode destination, DeviceMode source) { return Merged(destination, &source.pub); }

    DeviceMode Validated(DeviceMode record) {
        ValidateDevmode(&record, handle_);
        return record;
    }
};

}  // namespace

TEST_F(Merging, TakesTheCallersFlaggedAndPrivateSettings) {
    DeviceMode source = ValidDeviceMode();
    source.pub.dmCopies = 7;
    source.pub.dmPrintQuality = 600;
    source.pub.dmFields = DM_COPIES;
    source.priv.mirrorImage = 1;
    const DeviceMode merged = Merged(ValidDeviceMode(), source);
    EXPECT_EQ(merged.pub.dmCopies, 7);
    EXPECT_EQ(merged.pub.dmPrintQuality, 300) << "it was not flagged";
    EXPECT_EQ(merged.priv.mirrorImage, 1);
}

TEST_F(Merging, ValidatesTheResult) {
    DeviceMode source = ValidDeviceMode();
    source.pub.dmCopies = 0;
    source.pub.dmPaperSize = 9;
    source.pub.dmPaperWidth = 2971;
    source.pub.dmPaperLength = 2970;
    source.priv.phHOffset = 1001;
    const DeviceMode merged = Merged(ValidDeviceMode(), source);
    EXPECT_EQ(merged.pub.dmCopies, 1);
    EXPECT_EQ(merged.pub.dmPaperSize, 256);
    EXPECT_EQ(Text(merged.pub.dmFormName), u"Custom");
    EXPECT_EQ(merged.pub.dmPaperWidth, 2794);
    EXPECT_EQ(merged.pub.dmPaperLength, 2970);
    EXPECT_EQ(merged.priv.phHOffset, 20);
}

TEST_F(Merging, ANullCallersRecordChangesNothing) {
    DeviceMode destination = DefaultDeviceMode();
    EXPECT_TRUE(MergeDevMode(&destination, nullptr, handle_));
    EXPECT_TRUE(SameRecord(destination, DefaultDeviceMode())) << "it is not validated either";
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Trace] <MergeDevMode>", "[Error] pdmSrc NULL",
                                              "[Trace] Return: TRUE", "[Trace] </MergeDevMode>"));
}

TEST_F(Merging, RunningOutOfMemoryLeavesThePrintersRecord) {
    DeviceMode destination = DefaultDeviceMode();
    DeviceMode source = ValidDeviceMode();
    const AllocationFailure memory(916);
    EXPECT_FALSE(MergeDevMode(&destination, &source.pub, handle_));
    EXPECT_EQ(memory.Count(), 1);
    EXPECT_TRUE(SameRecord(destination, DefaultDeviceMode()));
    EXPECT_THAT(log_.TakeLines(), ElementsAre("[Trace] <MergeDevMode>", "[Info]  failed to alloc pdm",
                                              "[Trace] Return: FALSE", "[Trace] </MergeDevMode>"));
}

TEST_F(Merging, ARecordThatCannotBeConvertedLeavesThePrintersRecord) {
    DeviceMode unversioned = ValidDeviceMode();
    unversioned.pub.dmSpecVersion = 0;
    for (const WORD size : {0, 70, 100, 1000}) {
        ForeignDevMode source(size, 696, unversioned);
        DeviceMode destination = DefaultDeviceMode();
        EXPECT_FALSE(MergeDevMode(&destination, source.Record(), handle_)) << size;
        EXPECT_TRUE(SameRecord(destination, DefaultDeviceMode())) << size;
    }
    const std::vector<std::string> lines = LinesWithDumpsFolded();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2], "[Trace] Return: FALSE");
    EXPECT_EQ(lines[lines.size() - 1], "[Trace] </MergeDevMode>");
}

TEST_F(Merging, ItsStepsAreTraced) {
    DeviceMode destination = ValidDeviceMode();
    CopyText(destination.priv.colorProfile, FieldText(L"neutral.zvp"));
    DeviceMode source = ValidDeviceMode();
    EXPECT_TRUE(MergeDevMode(&destination, &source.pub, handle_));
    std::vector<std::string> lines = LinesWithDumpsFolded();
    bool inside = false;
    std::erase_if(lines, [&inside](const std::string& line) {
        for (const char* nested : {"ConvertDevMode", "CopyDevmode", "ValidateDevmode"}) {
            if (line == "[Trace] <" + std::string(nested) + ">") inside = true;
            if (line == "[Trace] </" + std::string(nested) + ">") {
                inside = false;
                return false;
            }
        }
        return inside;
    });
    EXPECT_THAT(lines, ElementsAre("[Trace] <MergeDevMode>", "[Trace] pdmDest:", "(dump)",
                                   "[Trace] pdmSrc:", "(dump)", "[Trace] pdmDest profile [neutral.zvp] 1",
                                   "[Trace] pdmSrc profile [] 0", "[Trace] </ConvertDevMode>",
                                   "[Trace] </CopyDevmode>", "[Trace] </ValidateDevmode>",
                                   "[Trace] pdmDest:", "(dump)", "[Trace] pdmSrc:", "(dump)",
                                   "[Trace] Return: TRUE", "[Trace] </MergeDevMode>"));
}

TEST_F(Merging, DumpsWhatItTakesOverAndWhatItGives) {
    DeviceMode destination = ValidDeviceMode();
    destination.pub.dmCopies = 3;
    DeviceMode source = ValidDeviceMode();
    source.pub.dmCopies = 7;
    source.pub.dmFields = 0;
    EXPECT_TRUE(MergeDevMode(&destination, &source.pub, handle_));
    EXPECT_THAT(
        DumpedField("dmCopies"),
        ElementsAre("pdmDest: 3", "pdmSrc: 7", "pdmIn: 7", "pdmOut: 3", "pdmIn: 7", "pdmOut: 7",  // converted
                    "dest: 3", "src: 7", "dest: 3", "src: 7",                                     // copied
                    "pdm (before ValidateForm): 3", "pdm (After ValidateForm): 3", "pdm: 3",      // validated
                    "pdmDest: 3", "pdmSrc: 7"));
}

TEST_F(Merging, ARecordOfAnOlderLayoutGivesItsPublicFields) {
    for (const WORD size : {188, 212}) {
        DeviceMode values = ValidDeviceMode();
        values.pub.dmSpecVersion = 0x0400;
        values.pub.dmCopies = 7;
        values.priv.mirrorImage = 1;
        ForeignDevMode source(size, 696, values);
        const DeviceMode merged = Merged(ValidDeviceMode(), source.Record());
        EXPECT_EQ(merged.pub.dmCopies, 7);
        EXPECT_EQ(merged.priv.mirrorImage, 1) << "its private part begins where its public one ends";
        EXPECT_EQ(merged.pub.dmSpecVersion, 0x0401);
        EXPECT_EQ(merged.pub.dmSize, 220);
    }
}

TEST_F(Merging, ARecordWithoutAPrivatePartKeepsThePrintersPrivateSettings) {
    DeviceMode destination = ValidDeviceMode();
    destination.priv.mirrorImage = 1;
    CopyText(destination.priv.colorProfile, FieldText(L"neutral.zvp"));
    DeviceMode values = ValidDeviceMode();
    values.pub.dmCopies = 7;
    values.pub.dmPaperSize = 256;
    values.pub.dmPaperWidth = 1000;
    values.pub.dmPaperLength = 2000;
    ForeignDevMode source(220, 0, values);
    const std::string before = source.Bytes();
    DeviceMode expected = destination;
    expected.pub.dmCopies = 7;
    expected.pub.dmPaperSize = 256;
    expected.pub.dmPaperWidth = 1000;
    expected.pub.dmPaperLength = 2000;
    EXPECT_TRUE(SameRecord(Merged(destination, source.Record()), Validated(expected)));
    EXPECT_EQ(source.Bytes(), before) << "it has no room for the profile";
}

TEST_F(Merging, AWrongSignatureKeepsThePrintersPrivateSettings) {
    DeviceMode destination = ValidDeviceMode();
    destination.priv.mirrorImage = 1;
    DeviceMode source = ValidDeviceMode();
    source.priv.signature = 0x18284001;
    source.pub.dmCopies = 7;
    const DeviceMode merged = Merged(destination, source);
    EXPECT_EQ(merged.priv.mirrorImage, 1);
    EXPECT_EQ(merged.priv.signature, 0x18284000u);
    EXPECT_EQ(merged.pub.dmCopies, 7);
}

TEST_F(Merging, AShortPrivatePartGivesTheFieldsThatItHas) {
    DeviceMode destination = ValidDeviceMode();
    destination.priv.phHOffset = 77;
    CopyText(destination.priv.colorProfile, FieldText(L"neutral.zvp"));
    DeviceMode values = ValidDeviceMode();
    values.priv.mirrorImage = 1;
    for (const WORD size : {20, 160, 161, 300}) {
        ForeignDevMode source(220, size, values);
        const DeviceMode merged = Merged(destination, source.Record());
        EXPECT_EQ(merged.priv.mirrorImage, 1) << size;
        EXPECT_EQ(merged.priv.phHOffset, 77) << size;
        EXPECT_EQ(Text(merged.priv.colorProfile), u"neutral.zvp") << size;
    }
    ForeignDevMode source(220, 2, values);
    EXPECT_EQ(Merged(destination, source.Record()).priv.mirrorImage, 0) << "half a signature is none";
}

TEST_F(Merging, ThePrintersProfileIsWrittenIntoASourceThatNamesNone) {
    DeviceMode destination = ValidDeviceMode();
    CopyText(destination.priv.colorProfile, FieldText(L"neutral.zvp"));
    ForeignDevMode source(220, 696, ValidDeviceMode());
    EXPECT_EQ(Text(Merged(destination, source.Record()).priv.colorProfile), u"neutral.zvp");
    EXPECT_EQ(Text(LoadDevMode(source.Record()).priv.colorProfile), u"neutral.zvp");
}

TEST_F(Merging, ASourcesOwnProfileWins) {
    DeviceMode destination = ValidDeviceMode();
    CopyText(destination.priv.colorProfile, FieldText(L"neutral.zvp"));
    DeviceMode source = ValidDeviceMode();
    CopyText(source.priv.colorProfile, FieldText(L"coated.zvp"));
    EXPECT_EQ(Text(Merged(destination, &source.pub).priv.colorProfile), u"coated.zvp");
    EXPECT_EQ(Text(source.priv.colorProfile), u"coated.zvp");
    EXPECT_EQ(Text(Merged(ValidDeviceMode(), &source.pub).priv.colorProfile), u"coated.zvp");
}

TEST_F(Merging, ANameOfOneCharacterIsAProfileToo) {
    DeviceMode printers = ValidDeviceMode(), source = ValidDeviceMode();
    CopyText(printers.priv.colorProfile, FieldText(L"n"));
    CopyText(source.priv.colorProfile, FieldText(L"c"));
    DeviceMode destination = printers;
    EXPECT_TRUE(MergeDevMode(&destination, &source.pub, handle_));
    EXPECT_THAT(LinesWithDumpsFolded(),
                AllOf(Contains("[Trace] pdmDest profile [n] 1"), Contains("[Trace] pdmSrc profile [c] 1")));
    EXPECT_EQ(Text(destination.priv.colorProfile), u"c");
    EXPECT_EQ(Text(Merged(printers, ValidDeviceMode()).priv.colorProfile), u"n");
}

TEST_F(Merging, BytesAfterAnEmptyProfileNameStayAsTheyAre) {
    DeviceMode source = ValidDeviceMode();
    source.priv.colorProfile[1] = L'x';
    const DeviceMode before = source;
    Merged(ValidDeviceMode(), &source.pub);
    EXPECT_TRUE(SameRecord(source, before));
}

TEST_F(Merging, ALabelChosenOnThePrinterSurvivesASourceThatNamesNone) {
    AddLabel(300, "Versand", "101.6", "152.4", 0);
    for (const int16_t number : {int16_t{257}, int16_t{256}, int16_t{9}, int16_t{0}, int16_t{-1}}) {
        DeviceMode source = ValidDeviceMode();
        source.pub.dmPaperSize = number;
        source.priv.dmPaperSize = number;
        const DeviceMode merged = Merged(RecordWithLabel(), &source.pub);
        EXPECT_TRUE(SameRecord(merged, RecordWithLabel())) << number;
        EXPECT_EQ(source.pub.dmPaperSize, 300) << "the caller's record is written to";
        EXPECT_EQ(source.pub.dmPaperWidth, 1016);
        EXPECT_EQ(source.pub.dmPaperLength, 1524);
        EXPECT_EQ(source.priv.dmPaperSize, 300);
        EXPECT_EQ(source.priv.units, 0u);
        EXPECT_STREQ(source.priv.width_string, "101.6");
        EXPECT_STREQ(source.priv.length_string, "152.4");
        EXPECT_STREQ(source.priv.labelName, "Versand");
    }
}

TEST_F(Merging, TheFirstLabelOfTheListSurvivesToo) {
    EXPECT_TRUE(SameRecord(Merged(RecordWithLabel(258), ValidDeviceMode()), RecordWithLabel(258)));
}

TEST_F(Merging, ASourcesOwnLabelWins) {
    DeviceMode source = RecordWithLabel(258);
    CopyText(source.priv.labelName, "Klein");
    const DeviceMode before = source;
    const DeviceMode merged = Merged(RecordWithLabel(), &source.pub);
    EXPECT_EQ(merged.pub.dmPaperSize, 258);
    EXPECT_EQ(merged.priv.dmPaperSize, 258);
    EXPECT_STREQ(merged.priv.labelName, "Klein");
    EXPECT_TRUE(SameRecord(source, before));
}

TEST_F(Merging, APrinterWithoutALabelOfItsListWritesNothing) {
    DeviceMode source = ValidDeviceMode();
    source.pub.dmPaperSize = 256;
    source.priv.dmPaperSize = 256;
    const DeviceMode before = source;
    EXPECT_EQ(Merged(ValidDeviceMode(), &source.pub).pub.dmPaperSize, 256);
    EXPECT_TRUE(SameRecord(source, before));
}

TEST_F(Merging, TheLabelGoesIntoThePublicFieldsOfASourceWithoutAPrivatePart) {
    for (const WORD size : {72, 78, 80, 82, 84, 212, 220}) {
        ForeignDevMode source(size, 0, ValidDeviceMode());
        const DeviceMode merged = Merged(RecordWithLabel(), source.Record());
        EXPECT_TRUE(SameRecord(merged, RecordWithLabel())) << size;
        const DEVMODEW pub = LoadDevMode(source.Record()).pub;
        EXPECT_EQ(pub.dmPaperSize, size < 80 ? 0 : 300) << size;
        EXPECT_EQ(pub.dmPaperLength, size < 82 ? 0 : 1524) << size;
        EXPECT_EQ(pub.dmPaperWidth, size < 84 ? 0 : 1016) << size;
    }
}

TEST_F(Merging, RecordsOfEverySizeAreReadAndWrittenWithinTheirEnd) {
    const LogCapture quiet(0);
    DeviceMode destination = RecordWithLabel();
    CopyText(destination.priv.colorProfile, FieldText(L"neutral.zvp"));
    DeviceMode values = ValidDeviceMode();
    memset(values.priv.labelName, 'n', sizeof values.priv.labelName);
    for (WORD publicSize = 0; publicSize <= 230; ++publicSize) {
        for (const WORD privateSize :
             {0, 1, 3, 4, 33, 137, 142, 150, 165, 500, 679, 680, 695, 696, 697, 1000}) {
            ForeignDevMode source(publicSize, privateSize, values);
            DeviceMode merged = destination;
            const bool versioned = publicSize > 64;
            ASSERT_EQ(MergeDevMode(&merged, source.Record(), handle_), versioned)
                << publicSize << " " << privateSize;
            ASSERT_EQ(source.Record()->dmSize, publicSize);
            ASSERT_EQ(source.Record()->dmDriverExtra, privateSize);
            ASSERT_EQ(merged.priv.dmPaperSize, 300);
            ASSERT_EQ(Text(merged.priv.colorProfile), u"neutral.zvp") << publicSize << " " << privateSize;
        }
    }
    for (const WORD publicSize : {1000, 65535}) {
        ForeignDevMode source(publicSize, 696, values);
        EXPECT_TRUE(MergeDevMode(&destination, source.Record(), handle_));
    }
}

TEST_F(Merging, TextsThatFillTheirFieldsAreTakenWithoutReadingOn) {
    DeviceMode values = ValidDeviceMode();
    values.pub.dmFields = DM_FORMNAME;
    values.pub.dmPaperSize = 257;
    std::fill(std::begin(values.pub.dmFormName), std::end(values.pub.dmFormName), L'f');
    std::fill(std::begin(values.priv.colorProfile), std::end(values.priv.colorProfile), L'p');
    ForeignDevMode source(220, 680, values);
    const DeviceMode merged = Merged(ValidDeviceMode(), source.Record());
    EXPECT_EQ(Text(merged.pub.dmFormName), std::u16string(31, u'f'));
    EXPECT_EQ(merged.priv.colorProfile[259], L'p');
}

}  // namespace orvex
