#include "driver/config/device_mode_merge.h"

#include "driver/support/text.h"
#include "tests/driver/config/foreign_dev_mode.h"
#include "tests/driver/config/printer_test.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/device_mode_rules.h"

namespace orvex {

using namespace tools;
using namespace plain;
using testing::ElementsAre;

namespace {

class Validation : public PrinterTest {
  protected:
    DeviceMode Validated(DeviceMode record) {
        ValidateDevmode(&record, handle_);
        return record;
    }

    DeviceMode WithForm(DeviceMode record) {
        ValidateForm(&record, handle_);
        return record;
    }

    // Sets every field of that size to `value` and checks what validation makes of each.
    void CheckFields(size_t size, int32_t value) {
        DeviceMode record = DefaultDeviceMode();
        for (const Rule& rule : Rules()) {
            if (rule.size == size) SetValue(record, rule, value);
        }
        const DeviceMode validated = Validated(record);
        for (const Rule& rule : Rules()) {
            if (rule.size != size) continue;
            const int32_t expected = rule.valid(value) ? value : rule.replacement;
            ASSERT_EQ(ValueOf(validated, rule), expected) << rule.name << " " << value;
        }
    }

    // The paper fields of a record.
    struct Paper {
        int number, length, width;
        std::u16string form;
        bool operator==(const Paper&) const = default;
    };
    Paper PaperOf(const DeviceMode& record) {
        return {record.pub.dmPaperSize, record.pub.dmPaperLength, record.pub.dmPaperWidth,
                Text(record.pub.dmFormName)};
    }
};

DeviceMode RecordWithPaper(int number, int length = 1000, int width = 500) {
    DeviceMode record = DefaultDeviceMode();
    CopyText(record.pub.dmFormName, FieldText(L"Before"));
    record.pub.dmPaperSize = static_cast<int16_t>(number);
    record.pub.dmPaperLength = static_cast<int16_t>(length);
    record.pub.dmPaperWidth = static_cast<int16_t>(width);
    return record;
}

}  // namespace

TEST_F(Validation, ADefaultRecordGetsItsPurgeDefaultsScaleAndPaperFlags) {
    const DeviceMode validated = Validated(DefaultDeviceMode());
    EXPECT_TRUE(SameRecord(validated, ValidDeviceMode()));
    EXPECT_TRUE(SameRecord(Validated(validated), validated)) << "a valid record stays as it is";
}

TEST_F(Validation, ItsDumpsShowTheRecordBeforeAndAfter) {
    Validated(DefaultDeviceMode());
    const std::vector<std::string> lines = log_.TakeLines();
    const auto shown = [&lines](const std::string& field) {
        std::vector<std::string> values = DumpedField(lines, field);
        for (std::string& value : values) value.erase(0, value.rfind(' ') + 1);
        return values;
    };
    EXPECT_THAT(shown("dmFields"), ElementsAre("118531", "118543", "118543"));
    EXPECT_THAT(shown("dmPaperLength"), ElementsAre("2159", "2159", "2159"));
    EXPECT_THAT(shown("dmPaperWidth"), ElementsAre("2794", "2794", "2794"));
    EXPECT_THAT(shown("signature"), ElementsAre("405291008", "405291008", "405291008"));
    EXPECT_THAT(shown("purgeDots"), ElementsAre("0", "0", "1"));
    EXPECT_THAT(shown("purgeGap"), ElementsAre("0", "0", "5"));
}

TEST_F(Validation, ItsStepsAreTraced) {
    Validated(DefaultDeviceMode());
    EXPECT_THAT(LinesWithDumpsFolded(),
                ElementsAre("[Trace] <ValidateDevmode>", "[Trace] pdm (before ValidateForm):", "(dump)",
                            "[Trace] <ValidateForm>", "[Trace] </ValidateForm>",
                            "[Trace] pdm (After ValidateForm):", "(dump)", "[Trace] pdm:", "(dump)",
                            "[Trace] </ValidateDevmode>"));
}

TEST_F(Validation, EveryFieldGetsAValidValue) {
    const LogCapture quiet(0);
    for (int32_t value = INT16_MIN; value <= INT16_MAX && !HasFailure(); ++value) CheckFields(2, value);
    for (int32_t value = INT8_MIN; value <= INT8_MAX; ++value) CheckFields(1, value);
    for (int32_t value = -1000; value <= 1000; ++value) CheckFields(4, value);
    for (const int32_t value : {INT32_MIN, INT32_MAX, 0x10000, 0x10001, 0x100, 0x101, -65535})
        CheckFields(4, value);
}

TEST_F(Validation, AStoredAdjustmentOf156IsMinus100) {
    DeviceMode record = DefaultDeviceMode();
    record.priv.adj_cyan = static_cast<int8_t>(156);
    record.priv.adj_black = 101;
    const DeviceMode validated = Validated(record);
    EXPECT_EQ(validated.priv.adj_cyan, -100);
    EXPECT_EQ(validated.priv.adj_black, 0);
}

TEST_F(Validation, PrivateFieldsThatMayHaveAnyValueKeepTheirs) {
    DeviceMode record = DefaultDeviceMode();
    record.priv.units = 0xFFFFFFFF;
    record.priv.signature = 0;
    CopyText(record.priv.colorProfile, FieldText(L"neutral.zvp"));
    const DeviceMode validated = Validated(record);
    EXPECT_EQ(validated.priv.units, 0xFFFFFFFFu);
    EXPECT_EQ(validated.priv.signature, 0u);
    EXPECT_EQ(Text(validated.priv.colorProfile), u"neutral.zvp");
}

TEST_F(Validation, TheVerticalResolutionFollowsTheHorizontalOne) {
    DeviceMode record = DefaultDeviceMode();
    record.pub.dmPrintQuality = 600;
    EXPECT_EQ(Validated(record).pub.dmYResolution, 600);
    record.pub.dmPrintQuality = 1200;
    record.pub.dmYResolution = 600;
    EXPECT_EQ(Validated(record).pub.dmYResolution, 300);
}

TEST_F(Validation, PublicFieldsThatMayHaveAnyValueKeepTheirs) {
    DeviceMode record = DefaultDeviceMode();
    record.pub.dmDefaultSource = 77;
    record.pub.dmColor = 78;
    record.pub.dmTTOption = 79;
    record.pub.dmCollate = 80;
    const DEVMODEW pub = Validated(record).pub;
    EXPECT_EQ(pub.dmDefaultSource, 77);
    EXPECT_EQ(pub.dmColor, 78);
    EXPECT_EQ(pub.dmTTOption, 79);
    EXPECT_EQ(pub.dmCollate, 80);
}

TEST_F(Validation, AFreeCustomSizeIsNamedCustom) {
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(256))), (Paper{256, 1000, 500, u"Custom"}));
    EXPECT_EQ(spooler_.Calls("EnumPrinterKeyW"), 0);
}

TEST_F(Validation, AStandardSizeBecomesACustomOneOfItsSize) {
    for (const int number : {9, 0, 1, 255, -1, -32768}) {
        EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(number))), (Paper{256, 1000, 500, u"Custom"})) << number;
    }
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(9, 100, 100))), (Paper{256, 2159, 2794, u"Custom"}));
}

TEST_F(Validation, SizesOutsideTheirLimitsAreReplaced) {
    const struct {
        int length, width, validLength, validWidth;
    } kCases[] = {{254, 254, 254, 254},       {253, 253, 2159, 2794},      {9017, 2970, 9017, 2970},
                  {9018, 2971, 2159, 2794},   {0, 0, 2159, 2794},          {-1, -1, 2159, 2794},
                  {32767, 32767, 2159, 2794}, {-32768, -32768, 2159, 2794}};
    for (const auto& each : kCases) {
        const DEVMODEW pub = WithForm(RecordWithPaper(256, each.length, each.width)).pub;
        EXPECT_EQ(pub.dmPaperLength, each.validLength) << each.length;
        EXPECT_EQ(pub.dmPaperWidth, each.validWidth) << each.width;
    }
}

TEST_F(Validation, ThePaperFlagsAreAddedToTheOthers) {
    DeviceMode record = RecordWithPaper(256);
    record.pub.dmFields = 0x80000001;
    EXPECT_EQ(WithForm(record).pub.dmFields, 0x8001000Fu);
}

TEST_F(Validation, ANumberThatSomeoneChangedBringsItsLabelsSizeAndName) {
    AddLabel(258, "Klein", "50", "25.4", 0);
    AddLabel(300, "Versand", "4", "6", 1);
    const DeviceMode validated = WithForm(RecordWithPaper(300));
    EXPECT_EQ(PaperOf(validated), (Paper{300, 1524, 1016, u"Versand"}));
    EXPECT_STREQ(validated.priv.labelName, "Versand");
    EXPECT_EQ(validated.priv.dmPaperSize, 257) << "the private number, units and texts stay";
    EXPECT_EQ(validated.priv.units, 1u);
    EXPECT_STREQ(validated.priv.width_string, "8.500");
    EXPECT_STREQ(validated.priv.length_string, "11.000");
    EXPECT_THAT(log_.TakeLines(),
                ElementsAre("[Trace] <ValidateForm>", "[Trace] <ReadPrinterLabelList>", "[Trace] Return: 0x0",
                            "[Trace] </ReadPrinterLabelList>", "[Trace] </ValidateForm>"));
}

TEST_F(Validation, ALabelAfter128OthersIsNotFound) {
    for (uint16_t number = 258; number <= 258 + 128; ++number) AddLabel(number, "Versand", "4", "6", 1);
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(258 + 127))), (Paper{258 + 127, 1524, 1016, u"Versand"}));
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(258 + 128))), (Paper{258 + 128, 1000, 500, u"Before"}));
}

TEST_F(Validation, AChangedNumberThatNoLabelHasChangesNothing) {
    AddLabel(258, "Klein", "50", "25.4", 0);
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(300))), (Paper{300, 1000, 500, u"Before"}));
    printer_.data = {};
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(300))), (Paper{300, 1000, 500, u"Before"}));
}

TEST_F(Validation, TheNumberOfThePrivatePartNeedsNoList) {
    AddLabel(257, "Versand", "4", "6", 1);
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(257))), (Paper{257, 1000, 500, u"Before"}));
    EXPECT_EQ(spooler_.Calls("EnumPrinterKeyW"), 0);
}

TEST_F(Validation, ALabelsSizeOutOfTheLimitsIsReplaced) {
    AddLabel(258, "Lang", "4", "999999", 1);
    AddLabel(259, "Unlesbar", "x", "y", 0);
    AddLabel(260, "Zu lang", "4000", "6653.6", 0);
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(258))), (Paper{258, 2159, 1016, u"Lang"}));
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(259))), (Paper{259, 2159, 2794, u"Unlesbar"}));
    EXPECT_EQ(PaperOf(WithForm(RecordWithPaper(260))), (Paper{260, 1000, 2794, u"Zu lang"}));
}

TEST_F(Validation, ALabelsNameIsCutToTheFormNamesField) {
    const std::string name(63, 'n');
    AddLabel(258, name.c_str(), "50", "50", 0);
    const DeviceMode validated = WithForm(RecordWithPaper(258));
    EXPECT_EQ(Text(validated.pub.dmFormName), std::u16string(31, u'n'));
    EXPECT_EQ(validated.priv.labelName, name);
}

TEST_F(Validation, AListThatCannotBeReadLeavesTheLabelAlone) {
    DeviceMode record = RecordWithPaper(300);
    spooler_.FailCall("EnumPrinterKeyW", 1, ERROR_ACCESS_DENIED);
    ValidateForm(&record, handle_);
    EXPECT_EQ(PaperOf(record), (Paper{300, 1000, 500, u"Before"}));
    EXPECT_THAT(ErrorLines(), ElementsAre("[Error] Could not find label list in registry: 0x5"));
}

}  // namespace orvex
