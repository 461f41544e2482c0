#include "driver/config/device_mode_validation.h"

#include <algorithm>
#include <functional>

#include "driver/support/text.h"
#include "tests/driver/config/default_record.h"
#include "tests/driver/config/foreign_dev_mode.h"
#include "tests/driver/config/printer_test.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;

namespace {

bool Between(int value, int lowest, int highest) {
    return value >= lowest && value <= highest;
}
bool IsIn(int value, std::initializer_list<int> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// A field of the private part, by its place and valid values.
struct Field {
    const char* name;
    size_t offset;
    size_t size;
    int replacement;
    std::function<bool(int)> valid;
};

bool IsFlag(int value) {
    return value == 0 || value == 1;
}
bool IsAdjustment(int value) {
    return Between(value, -100, 100);
}

const std::vector<Field>& Fields() {
    static const std::vector<Field> fields = {
        {"colorAdjust", 4, 4, 0, IsFlag},
        {"printSetting", 8, 4, 1, [](int v) { return Between(v, 0, 3); }},
        {"rotate180", 12, 4, 0, IsFlag},
        {"mirrorImage", 16, 4, 0, IsFlag},
        {"jobCapture", 20, 4, 0, IsFlag},
        {"noPrint", 24, 4, 0, IsFlag},
        {"stitched", 28, 4, 0, IsFlag},
        {"usePrivateCopies", 96, 4, 0, IsFlag},
        {"copies", 100, 2, 1, [](int v) { return Between(v, 1, 10000); }},
        {"chunksize", 102, 2, 500, [](int v) { return Between(v, 30, 10000); }},
        {"chunkActive", 104, 4, 0, IsFlag},
        {"alignment", 108, 2, 0,
         [](int v) {
             return IsIn(v, {0, 1, 2});
         }},
        {"feedSide", 112, 4, 0, IsFlag},
        {"overspray", 116, 2, 0,
         [](int v) {
             return IsIn(v, {0, 1, 2, 3});
         }},
        {"kws", 120, 4, 0, IsFlag},
        {"kws_fullwidth", 124, 4, 0, IsFlag},
        {"purgeBar", 128, 2, 1,
         [](int v) {
             return IsIn(v, {0, 1, 2});
         }},
        {"purgeDots", 130, 2, 1,
         [](int v) {
             return IsIn(v, {1, 5, 10});
         }},
        {"purgeGap", 132, 2, 5,
         [](int v) {
             return IsIn(v, {5, 10, 15});
         }},
        {"purgeFreq", 134, 2, 0,
         [](int v) {
             return IsIn(v, {0, 1, 2, 10, 20, 50});
         }},
        {"phHOffset", 680, 2, 20, [](int v) { return Between(v, -1000, 1000); }},
        {"phVOffset", 682, 2, 0, [](int v) { return Between(v, -250, 250); }},
        {"colorMode", 684, 4, 0,
         [](int v) {
             return IsIn(v, {0, 1, 2});
         }},
        {"adj_brightness", 688, 1, 0, IsAdjustment},
        {"adj_colortone", 689, 1, 0, IsAdjustment},
        {"adj_saturation", 690, 1, 0, IsAdjustment},
        {"adj_cyan", 691, 1, 0, IsAdjustment},
        {"adj_magenta", 692, 1, 0, IsAdjustment},
        {"adj_yellow", 693, 1, 0, IsAdjustment},
        {"adj_black", 694, 1, 0, IsAdjustment},
    };
    return fields;
}

int32_t FieldOf(const DeviceMode& record, const Field& field) {
    const BYTE* at = reinterpret_cast<const BYTE*>(&record.priv) + field.offset;
    if (field.size == 1) return static_cast<int8_t>(*at);
    if (field.size == 2) return static_cast<int16_t>(at[0] | at[1] << 8);
    int32_t value;
    memcpy(&value, at, sizeof value);
    return value;
}

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
        DeviceMode record = DefaultRecord();
        for (const Field& field : Fields()) {
            if (field.size == size)
                memcpy(reinterpret_cast<BYTE*>(&record.priv) + field.offset, &value, size);
        }
        const DeviceMode validated = Validated(record);
        for (const Field& field : Fields()) {
            if (field.size != size) continue;
            const int32_t expected = field.valid(value) ? value : field.replacement;
            ASSERT_EQ(FieldOf(validated, field), expected) << field.name << " " << value;
        }
    }

    // The paper fields after the form of a default record with that number and size was validated.
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
    DeviceMode record = DefaultRecord();
    CopyText(record.pub.dmFormName, FieldText(L"Before"));
    record.pub.dmPaperSize = static_cast<int16_t>(number);
    record.pub.dmPaperLength = static_cast<int16_t>(length);
    record.pub.dmPaperWidth = static_cast<int16_t>(width);
    return record;
}

}  // namespace

TEST_F(Validation, ADefaultRecordGetsItsPurgeDefaultsScaleAndPaperFlags) {
    RecordBytes expected = DefaultRecordBytes();
    expected.Put32(72, 0x0001CF0F);
    expected.Put16(84, 100);
    expected.Put16(220 + 130, 1);
    expected.Put16(220 + 132, 5);
    const DeviceMode validated = Validated(DefaultRecord());
    EXPECT_TRUE(SameRecord(validated, expected.Record()));
    EXPECT_TRUE(SameRecord(Validated(validated), validated)) << "a valid record stays as it is";
}

TEST_F(Validation, ItsDumpsShowTheRecordBeforeAndAfter) {
    Validated(DefaultRecord());
    const std::vector<std::string> lines = log_.TakeLines();
    const auto shown = [&lines](const std::string& field) {
        std::vector<std::string> values;
        for (const std::string& line : lines) {
            if (line.starts_with("[Trace] " + field + " "))
                values.push_back(line.substr(line.find("= ") + 2));
        }
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
    Validated(DefaultRecord());
    EXPECT_THAT(LinesWithDumpsFolded(),
                ElementsAre("[Trace] <ValidateDevmode>", "[Trace] pdm (before ValidateForm):", "(dump)",
                            "[Trace] <ValidateForm>", "[Trace] </ValidateForm>",
                            "[Trace] pdm (After ValidateForm):", "(dump)", "[Trace] pdm:", "(dump)",
                            "[Trace] </ValidateDevmode>"));
}

TEST_F(Validation, EveryPrivateFieldIsHeldInItsRange) {
    const LogCapture quiet(0);
    for (int32_t value = INT16_MIN; value <= INT16_MAX && !HasFailure(); ++value) CheckFields(2, value);
    for (int32_t value = INT8_MIN; value <= INT8_MAX; ++value) CheckFields(1, value);
    for (int32_t value = -1000; value <= 1000; ++value) CheckFields(4, value);
    for (const int32_t value : {INT32_MIN, INT32_MAX, 0x10000, 0x10001, 0x100, 0x101, -65535})
        CheckFields(4, value);
}

TEST_F(Validation, AStoredAdjustmentOf156IsMinus100) {
    DeviceMode record = DefaultRecord();
    record.priv.adj_cyan = static_cast<int8_t>(156);
    record.priv.adj_black = 101;
    const DeviceMode validated = Validated(record);
    EXPECT_EQ(validated.priv.adj_cyan, -100);
    EXPECT_EQ(validated.priv.adj_black, 0);
}

TEST_F(Validation, TheUncheckedPrivateFieldsStay) {
    DeviceMode record = DefaultRecord();
    record.priv.units = 0xFFFFFFFF;
    record.priv.signature = 0;
    CopyText(record.priv.colorProfile, FieldText(L"neutral.zvp"));
    const DeviceMode validated = Validated(record);
    EXPECT_EQ(validated.priv.units, 0xFFFFFFFFu);
    EXPECT_EQ(validated.priv.signature, 0u);
    EXPECT_EQ(Text(validated.priv.colorProfile), u"neutral.zvp");
}

TEST_F(Validation, ThePublicFieldsAreHeldInTheirRanges) {
    const LogCapture quiet(0);
    for (int value = INT16_MIN; value <= INT16_MAX; ++value) {
        const auto number = static_cast<int16_t>(value);
        DeviceMode record = DefaultRecord();
        record.pub.dmOrientation = number;
        record.pub.dmPrintQuality = number;
        record.pub.dmCopies = number;
        record.pub.dmScale = number;
        record.pub.dmYResolution = number;
        record.pub.dmDuplex = number;
        const DEVMODEW pub = Validated(record).pub;
        ASSERT_EQ(pub.dmOrientation, value == 2 ? 2 : 1) << value;
        ASSERT_EQ(pub.dmPrintQuality, value == 600 ? 600 : 300) << value;
        ASSERT_EQ(pub.dmCopies, value >= 1 && value <= 10000 ? value : 1);
        ASSERT_EQ(pub.dmScale, 100);
        ASSERT_EQ(pub.dmYResolution, pub.dmPrintQuality);
        ASSERT_EQ(pub.dmDuplex, 1);
    }
}

TEST_F(Validation, ThePublicFieldsThatAreLeftStay) {
    DeviceMode record = DefaultRecord();
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

TEST_F(Validation, SizesAreHeldBetweenTheirLimits) {
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

TEST_F(Validation, ALabelBehind128OthersIsNotFound) {
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

TEST_F(Validation, APrinterThatTellsNothingLeavesTheLabelAlone) {
    DeviceMode record = RecordWithPaper(300);
    spooler_.FailCall("EnumPrinterKeyW", 1, ERROR_ACCESS_DENIED);
    ValidateForm(&record, handle_);
    EXPECT_EQ(PaperOf(record), (Paper{300, 1000, 500, u"Before"}));
    EXPECT_THAT(ErrorLines(), ElementsAre("[Error] Could not find label list in registry: 0x5"));
}

}  // namespace orvex
