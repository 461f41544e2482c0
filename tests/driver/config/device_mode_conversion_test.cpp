#include <algorithm>

#include "driver/config/device_mode_merge.h"
#include "tests/driver/config/foreign_dev_mode.h"
#include "tests/driver/config/printer_test.h"
#include "tests/plain/device_mode.h"

namespace orvex {

using namespace tools;
using namespace plain;
using testing::ElementsAre;

namespace {

BYTE* Bytes(DeviceMode* record) {
    return reinterpret_cast<BYTE*>(record);
}

// Returns a record in which every byte but its sizes is `value`.
DeviceMode FilledRecord(BYTE value) {
    DeviceMode record;
    memset(static_cast<void*>(&record), value, sizeof record);
    record.pub.dmSize = 220;
    record.pub.dmDriverExtra = 696;
    return record;
}

class Conversion : public PrinterTest {
  protected:
    static constexpr const char* kInvalid =
        "[Info]  DevMode is invalid. The values of sizeof(DEVMODE) and dmSize do not match.";
};

}  // namespace

TEST_F(Conversion, CopiesWhatBothRecordsHaveAndKeepsTheOutputsLayout) {
    const LogCapture quiet(0);
    for (const WORD publicSize : {72, 188, 212, 220, 300}) {
        for (const WORD privateSize : {0, 4, 100, 696, 800}) {
            ForeignDevMode in(publicSize, privateSize, FilledRecord(0x11));
            DeviceMode out = FilledRecord(0x22);
            out.pub.dmDriverVersion = 0x0777;
            const size_t publicBytes = std::min<size_t>(publicSize, 220);
            const size_t privateBytes = std::min<size_t>(privateSize, 696);
            DeviceMode expected = FilledRecord(0x22);
            memset(Bytes(&expected), 0x11, publicBytes);
            memset(Bytes(&expected) + 220, 0x11, privateBytes);
            expected.pub.dmSpecVersion = 0x0401;
            expected.pub.dmDriverVersion = 0x0777;
            expected.pub.dmSize = 220;
            expected.pub.dmDriverExtra = 696;
            EXPECT_EQ(ConvertDevMode(in.Record(), &out.pub), static_cast<int>(publicBytes + privateBytes));
            EXPECT_TRUE(SameRecord(out, expected)) << publicSize << " " << privateSize;
        }
    }
}

TEST_F(Conversion, WritesToOlderAndShorterLayoutsNoFurtherThanTheyReach) {
    const struct {
        WORD size, version;
    } kLayouts[] = {{188, 0x0320}, {212, 0x0400}, {220, 0x0401}, {100, 0x2222}, {66, 0x2222}, {300, 0x2222}};
    for (const auto& layout : kLayouts) {
        DeviceMode in = FilledRecord(0x11);
        ForeignDevMode out(layout.size, 10, FilledRecord(0x22));
        const int privateBytes = layout.size < 72 ? 0 : 10;
        EXPECT_EQ(ConvertDevMode(&in.pub, out.Record()), std::min<int>(layout.size, 220) + privateBytes);
        const DEVMODEW* pub = out.Record();
        EXPECT_EQ(pub->dmSpecVersion, layout.version) << layout.size;
        EXPECT_EQ(pub->dmSize, layout.size);
        EXPECT_EQ(pub->dmDriverExtra, 10);
        EXPECT_EQ(pub->dmDriverVersion, layout.size < 68 ? 0 : 0x2222) << "beyond 66 bytes there is nothing";
        EXPECT_EQ(pub->dmDeviceName[0], 0x1111);
    }
}

TEST_F(Conversion, ARecordOfUnknownLayoutNeedsAVersion) {
    const LogCapture quiet(0);
    DeviceMode out = FilledRecord(0x22);
    const DeviceMode before = out;
    DeviceMode unversioned = FilledRecord(0x11);
    unversioned.pub.dmSpecVersion = 0;
    for (const WORD size : {0, 64, 70, 100, 187, 219, 1000}) {
        ForeignDevMode in(size, 696, unversioned);
        EXPECT_EQ(ConvertDevMode(in.Record(), &out.pub), -1) << size;
    }
    EXPECT_TRUE(SameRecord(out, before));
    for (const WORD size : {188, 212, 220}) {
        ForeignDevMode in(size, 0, unversioned);
        EXPECT_EQ(ConvertDevMode(in.Record(), &out.pub), size) << "a known layout needs none";
    }
    ForeignDevMode versioned(100, 0, FilledRecord(0x11));
    EXPECT_EQ(ConvertDevMode(versioned.Record(), &out.pub), 100);
    ForeignDevMode versionCutOff(64, 0, FilledRecord(0x11));
    EXPECT_EQ(ConvertDevMode(versionCutOff.Record(), &out.pub), -1) << "its version lies past its end";
}

TEST_F(Conversion, AnOutputOfUnknownLayoutNeedsAVersionToo) {
    const DeviceMode in = FilledRecord(0x11);
    DeviceMode unversioned = FilledRecord(0x22);
    unversioned.pub.dmSpecVersion = 0;
    ForeignDevMode out(100, 8, unversioned);
    const std::string before = out.Bytes();
    EXPECT_EQ(ConvertDevMode(&in.pub, out.Record()), -1);
    EXPECT_EQ(out.Bytes(), before);
}

TEST_F(Conversion, NullRecordsAreRefused) {
    DeviceMode record = FilledRecord(0x11);
    EXPECT_EQ(ConvertDevMode(nullptr, &record.pub), -1);
    EXPECT_EQ(ConvertDevMode(&record.pub, nullptr), -1);
    EXPECT_TRUE(SameRecord(record, FilledRecord(0x11)));
    EXPECT_THAT(LinesWithDumpsFolded(),
                ElementsAre("[Trace] <ConvertDevMode>", "[Trace] pdmIn:", "[Trace] pdmOut:", "(dump)",
                            "[Trace] Return: -1", "[Trace] </ConvertDevMode>",  //
                            "[Trace] <ConvertDevMode>", "[Trace] pdmIn:", "(dump)",
                            "[Trace] pdmOut:", "[Trace] Return: -1", "[Trace] </ConvertDevMode>"));
}

TEST_F(Conversion, ItsStepsAreTraced) {
    ForeignDevMode in(212, 100, FilledRecord(0x11));
    DeviceMode out = FilledRecord(0x22);
    ConvertDevMode(in.Record(), &out.pub);
    EXPECT_THAT(LinesWithDumpsFolded(),
                ElementsAre("[Trace] <ConvertDevMode>", "[Trace] pdmIn:", kInvalid,
                            "[Trace] pdmOut:", "(dump)", "[Trace] pdmIn:", kInvalid,
                            "[Trace] pdmOut:", "(dump)", "[Trace] Return: 312", "[Trace] </ConvertDevMode>"));
}

TEST_F(Conversion, CopyingTakesEachFlaggedFieldAndItsFlag) {
    const LogCapture quiet(0);
    for (const FlaggedField& field : FlaggedFields()) {
        DeviceMode source = FilledRecord(0x11);
        source.pub.dmFields = field.flag;
        DeviceMode destination = FilledRecord(0x22);
        destination.pub.dmFields = 0x20000000;
        DeviceMode expected = destination;
        expected.pub.dmFields |= field.flag;
        memset(Bytes(&expected) + field.offset, 0x11, field.size);
        if (field.flag == DM_FORMNAME) expected.pub.dmFormName[31] = 0;
        CopyDevmode(&destination, &source);
        EXPECT_TRUE(SameRecord(destination, expected)) << std::hex << field.flag;
    }
}

TEST_F(Conversion, CopyingTakesNothingThatIsNotFlagged) {
    DWORD known = 0;
    for (const FlaggedField& field : FlaggedFields()) known |= field.flag;
    DeviceMode source = FilledRecord(0x11);
    source.pub.dmFields = ~known;
    DeviceMode destination = FilledRecord(0x22);
    destination.pub.dmFields = 0;
    const DeviceMode before = destination;
    CopyDevmode(&destination, &source);
    EXPECT_TRUE(SameRecord(destination, before));
}

TEST_F(Conversion, CopyingTakesASignedPrivatePartWhole) {
    DeviceMode source = FilledRecord(0x11);
    source.pub.dmFields = 0;
    source.priv.signature = 0x18284000;
    DeviceMode destination = FilledRecord(0x22);
    DeviceMode expected = destination;
    expected.priv = source.priv;
    CopyDevmode(&destination, &source);
    EXPECT_TRUE(SameRecord(destination, expected));
}

TEST_F(Conversion, CopyingIsTraced) {
    const DeviceMode source = FilledRecord(0x11);
    DeviceMode destination = FilledRecord(0x22);
    CopyDevmode(&destination, &source);
    EXPECT_THAT(LinesWithDumpsFolded(),
                ElementsAre("[Trace] <CopyDevmode>", "[Trace] dest:", "(dump)", "[Trace] src:", "(dump)",
                            "[Trace] dest:", "(dump)", "[Trace] src:", "(dump)", "[Trace] </CopyDevmode>"));
}

TEST_F(Conversion, DumpsBothRecordsBeforeAndAfter) {
    DeviceMode in = DefaultDeviceMode();
    in.pub.dmDriverVersion = 7;
    DeviceMode out = DefaultDeviceMode();
    out.pub.dmDriverVersion = 3;
    ConvertDevMode(&in.pub, &out.pub);
    EXPECT_THAT(DumpedField("dmDriverVersion"),
                ElementsAre("pdmIn: 7", "pdmOut: 3", "pdmIn: 7", "pdmOut: 3"));
    CopyDevmode(&out, &in);
    EXPECT_THAT(DumpedField("dmDriverVersion"), ElementsAre("dest: 3", "src: 7", "dest: 3", "src: 7"));
}

}  // namespace orvex
