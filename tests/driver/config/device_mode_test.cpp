#include "driver/config/device_mode.h"

#include <gmock/gmock.h>

#include <array>

#include "driver/support/log.h"
#include "driver/support/text.h"
#include "tests/driver/config/foreign_dev_mode.h"
#include "tests/kit/log_capture.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Returns a record whose every field has a value of its own.
DeviceMode FullRecord() {
    DeviceMode record = {};
    DEVMODEW& pub = record.pub;
    CopyText(pub.dmDeviceName, FieldText(L"Etikett 1"));
    pub.dmSpecVersion = 0x0401;
    pub.dmDriverVersion = 0xF402;
    pub.dmSize = 220;
    pub.dmDriverExtra = 696;
    pub.dmFields = 0x8001CF03;
    pub.dmOrientation = 2;
    pub.dmPaperSize = -3;
    pub.dmPaperLength = 2159;
    pub.dmPaperWidth = 2794;
    pub.dmCopies = 4;
    pub.dmPrintQuality = -1;
    pub.dmColor = 2;
    pub.dmYResolution = 600;
    pub.dmCollate = 1;
    PrivateDevMode& priv = record.priv;
    priv.signature = 0x98284000;
    priv.colorAdjust = 11;
    priv.colorMode = 12;
    priv.rotate180 = 13;
    priv.mirrorImage = 14;
    priv.jobCapture = 15;
    priv.noPrint = 16;
    priv.stitched = 17;
    CopyText(priv.labelName, "Versand");
    priv.usePrivateCopies = 18;
    priv.copies = -19;
    priv.chunksize = 20;
    priv.chunkActive = 21;
    priv.phHOffset = -22;
    priv.phVOffset = -23;
    priv.alignment = 24;
    priv.feedSide = 25;
    priv.overspray = 26;
    priv.kws = 27;
    priv.kws_fullwidth = 28;
    priv.purgeBar = 29;
    priv.purgeDots = 30;
    priv.purgeGap = 31;
    priv.purgeFreq = 32;
    priv.dmPaperSize = 300;
    priv.units = 0xFFFFFFFF;
    CopyText(priv.width_string, "8.500");
    CopyText(priv.length_string, "11.000");
    CopyText(priv.colorProfile, FieldText(L"neutral.zvp"));
    priv.adj_colortone = -1;
    priv.adj_brightness = static_cast<int8_t>(156);
    priv.adj_saturation = 3;
    priv.adj_cyan = 4;
    priv.adj_magenta = 5;
    priv.adj_yellow = 6;
    priv.adj_black = 7;
    return record;
}

std::vector<std::string> Dump(const DEVMODEW* record) {
    LogCapture log;
    DumpDevMode(record);
    return log.TakeLines();
}

std::string Address(const void* address) {
    char text[16];
    snprintf(text, sizeof text, "%x", static_cast<unsigned>(reinterpret_cast<uintptr_t>(address)));
    return text;
}

// Returns the value that a dump shows for a field; "(none)" when it has no such line.
std::string ShownValue(const std::vector<std::string>& lines, const std::string& field) {
    for (const std::string& line : lines) {
        if (line.starts_with("[Trace] " + field + " ")) return line.substr(line.find("= ") + 2);
    }
    return "(none)";
}

int linesUntilClear = 0;

// Replaces GetSystemTime, the first call of every line, and clears the mask as another thread may at any
// time.
void WINAPI CountLines(LPSYSTEMTIME time) {
    *time = {};
    if (--linesUntilClear == 0) logMask &= ~kLogMaskTrace;
}

}  // namespace

TEST(DumpDevMode, ShowsEveryFieldInItsColumnAndOrder) {
    const DeviceMode record = FullRecord();
    EXPECT_THAT(Dump(&record.pub),
                ElementsAre("[Trace] pdm:" + Address(&record) + " priv:" + Address(&record.priv),  //
                            "[Trace] <Public-DevMode>",                                            //
                            "[Trace] dmDeviceName       = Etikett 1",                              //
                            "[Trace] dmDriverVersion    = 62466",                                  //
                            "[Trace] dmSize             = 220",                                    //
                            "[Trace] dmDriverExtra      = 696",                                    //
                            "[Trace] dmFields           = 2147602179",                             //
                            "[Trace] dmOrientation      = 2",                                      //
                            "[Trace] dmPaperSize        = -3",                                     //
                            "[Trace] dmPaperLength      = 2159",                                   //
                            "[Trace] dmPaperWidth       = 2794",                                   //
                            "[Trace] dmCopies           = 4",                                      //
                            "[Trace] dmPrintQuality     = -1",                                     //
                            "[Trace] dmColor            = 2",                                      //
                            "[Trace] dmYResolution      = 600",                                    //
                            "[Trace] dmCollate          = 1",                                      //
                            "[Trace] </Public-DevMode>",                                           //
                            "[Trace] <Private-DevMode>",                                           //
                            "[Trace] signature                   = 2552774656",                    //
                            "[Trace] colorAdjust                 = 11",                            //
                            "[Trace] colorMode                   = 12",                            //
                            "[Trace] rotate180                   = 13",                            //
                            "[Trace] mirrorImage                 = 14",                            //
                            "[Trace] jobCapture                  = 15",                            //
                            "[Trace] noPrint                     = 16",                            //
                            "[Trace] stitched                    = 17",                            //
                            "[Trace] labelName                   = Versand",                       //
                            "[Trace] usePrivateCopies            = 18",                            //
                            "[Trace] copies                      = -19",                           //
                            "[Trace] chunksize                   = 20",                            //
                            "[Trace] chunkActive                 = 21",                            //
                            "[Trace] phHOffset                   = -22",                           //
                            "[Trace] phVOffset                   = -23",                           //
                            "[Trace] alignment                   = 24",                            //
                            "[Trace] feedSide                    = 25",                            //
                            "[Trace] overspray                   = 26",                            //
                            "[Trace] kws                         = 27",                            //
                            "[Trace] kws_fullwidth               = 28",                            //
                            "[Trace] purgeBar                    = 29",                            //
                            "[Trace] purgeDots                   = 30",                            //
                            "[Trace] purgeGap                    = 31",                            //
                            "[Trace] purgeFreq                   = 32",                            //
                            "[Trace] dmPaperSize                 = 300",                           //
                            "[Trace] units                       = -1",                            //
                            "[Trace] width_string                = 8.500",                         //
                            "[Trace] length_string               = 11.000",                        //
                            "[Trace] colorProfile                = neutral.zvp",                   //
                            "[Trace] adj_colortone               = -1",                            //
                            "[Trace] adj_brightness              = -100",                          //
                            "[Trace] adj_saturation              = 3",                             //
                            "[Trace] adj_cyan                    = 4",                             //
                            "[Trace] adj_magenta                 = 5",                             //
                            "[Trace] adj_yellow                  = 6",                             //
                            "[Trace] adj_black                   = 7",                             //
                            "[Trace] </Private-DevMode>"));
}

TEST(DumpDevMode, ARecordOfAnotherPublicSizeIsOneLineOfInformation) {
    for (const WORD size : {0, 70, 188, 212, 219, 221, 1000}) {
        ForeignDevMode record(size, 696, FullRecord());
        EXPECT_THAT(
            Dump(record.Record()),
            ElementsAre("[Info]  DevMode is invalid. The values of sizeof(DEVMODE) and dmSize do not match."))
            << size;
    }
}

TEST(DumpDevMode, TheInvalidLineIsGatedByTheErrorBit) {
    ForeignDevMode record(212, 696, FullRecord());
    LogCapture log(2);
    DumpDevMode(record.Record());
    EXPECT_THAT(log.TakeLines(), IsEmpty());
}

TEST(DumpDevMode, ShowsNothingWithoutTheTraceBit) {
    const DeviceMode record = FullRecord();
    LogCapture log(1);
    DumpDevMode(&record.pub);
    EXPECT_THAT(log.TakeLines(), IsEmpty());
}

TEST(DumpDevMode, ShowsNothingForANullRecord) {
    EXPECT_THAT(Dump(nullptr), IsEmpty());
}

TEST(DumpDevMode, EndsBeforeTheNextLineWhenTracingIsSwitchedOff) {
    const DeviceMode record = FullRecord();
    const size_t all = Dump(&record.pub).size();
    for (const int lines : {1, 2, 5, 16, 17, 18, 20, 54}) {
        LogCapture log;
        linesUntilClear = lines;
        const ImportPatch clock(nullptr, "GetSystemTime", reinterpret_cast<void*>(&CountLines));
        DumpDevMode(&record.pub);
        EXPECT_THAT(log.TakeLines(), SizeIs(lines)) << "of " << all;
    }
}

TEST(DumpDevMode, FieldsPastTheRecordsEndReadAsZeroOrEmpty) {
    ForeignDevMode bare(220, 0, FullRecord());
    std::vector<std::string> lines = Dump(bare.Record());
    EXPECT_EQ(ShownValue(lines, "dmCollate"), "1");
    EXPECT_EQ(ShownValue(lines, "signature"), "0");
    EXPECT_EQ(ShownValue(lines, "labelName"), "");
    EXPECT_EQ(ShownValue(lines, "colorProfile"), "");
    EXPECT_EQ(ShownValue(lines, "adj_black"), "0");

    ForeignDevMode cut(220, 35, FullRecord());
    lines = Dump(cut.Record());
    EXPECT_EQ(ShownValue(lines, "signature"), "2552774656");
    EXPECT_EQ(ShownValue(lines, "stitched"), "17");
    EXPECT_EQ(ShownValue(lines, "labelName"), "Ver") << "a text ends where the record does";
    EXPECT_EQ(ShownValue(lines, "usePrivateCopies"), "0");
}

TEST(DumpDevMode, TextsWithoutTerminatorAreShownUpToTheirSize) {
    DeviceMode values = FullRecord();
    std::fill(std::begin(values.pub.dmDeviceName), std::end(values.pub.dmDeviceName), L'd');
    memset(values.priv.labelName, 'n', 64);
    memset(values.priv.width_string, '1', 8);
    memset(values.priv.length_string, '2', 8);
    std::fill(std::begin(values.priv.colorProfile), std::end(values.priv.colorProfile), L'p');
    ForeignDevMode record(220, 680, values);  // ends with the profile's name
    const std::vector<std::string> lines = Dump(record.Record());
    EXPECT_EQ(ShownValue(lines, "dmDeviceName"), std::string(32, 'd'));
    EXPECT_EQ(ShownValue(lines, "labelName"), std::string(64, 'n'));
    EXPECT_EQ(ShownValue(lines, "width_string"), "11111111");
    EXPECT_EQ(ShownValue(lines, "length_string"), "22222222");
    EXPECT_EQ(ShownValue(lines, "colorProfile"), std::string(260, 'p'));
}

TEST(LoadDevMode, ReadsWhatTheRecordHasAndNothingElse) {
    const DeviceMode values = FullRecord();
    for (const WORD publicSize : {0, 64, 70, 72, 100, 188, 212, 220, 1000}) {
        for (const WORD privateSize : {0, 1, 4, 140, 300, 695, 696, 1200}) {
            ForeignDevMode record(publicSize, privateSize, values);
            DeviceMode expected = values;
            expected.pub.dmSize = publicSize;
            expected.pub.dmDriverExtra = privateSize;
            const size_t publicKept = std::min<size_t>(publicSize, 220);
            const size_t privateKept = publicSize < 72 ? 0 : std::min<size_t>(privateSize, 696);
            memset(reinterpret_cast<BYTE*>(&expected) + publicKept, 0, 220 - publicKept);
            memset(reinterpret_cast<BYTE*>(&expected.priv) + privateKept, 0, 696 - privateKept);
            const DeviceMode loaded = LoadDevMode(record.Record());
            EXPECT_EQ(memcmp(&loaded, &expected, sizeof loaded), 0) << publicSize << " " << privateSize;
        }
    }
}

TEST(StoreDevMode, WritesNoFurtherThanTheRecordReaches) {
    for (const WORD publicSize : {0, 70, 72, 100, 220, 1000}) {
        for (const WORD privateSize : {0, 5, 696, 1200}) {
            ForeignDevMode record(publicSize, privateSize, {});
            DeviceMode values = FullRecord();
            values.pub.dmSize = publicSize;
            values.pub.dmDriverExtra = privateSize;
            StoreDevMode(record.Record(), values);
            EXPECT_EQ(record.Bytes(), ForeignDevMode(publicSize, privateSize, values).Bytes());
        }
    }
}

TEST(PrivatePart, BeginsWhereThePublicPartEnds) {
    ForeignDevMode record(1000, 8, {});
    EXPECT_EQ(PrivateSize(record.Record()), 8u);
    EXPECT_EQ(
        static_cast<const BYTE*>(PrivatePart(record.Record())) - reinterpret_cast<BYTE*>(record.Record()),
        1000);
    ForeignDevMode headless(71, 696, {});
    EXPECT_EQ(PrivateSize(headless.Record()), 0u) << "its public part ends within its own sizes";
}

}  // namespace orvex
