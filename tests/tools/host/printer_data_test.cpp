#include "tools/host/printer_data.h"

#include <gmock/gmock.h>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/thrown_text.h"

namespace orvex::tools {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::string_literals;

namespace {

PrinterData Sample() {
    PrinterData data;
    data.SetNumber("Label Sizes\\258", "version", 1);
    data.SetText("Label Sizes\\258", "name", "Versand \"gro\u00DF\"");
    data.SetNumber("Label Sizes\\259", "units", 0xFFFFFFFF);
    data.Set("Colours", "table", {REG_BINARY, "\x00\x7F\xFF"s});
    data.Set("Colours", "short", {REG_DWORD, "\x01\x02"s});
    data.Set("Colours", "bare", {REG_SZ, "no end"s});
    data.Set("Colours", "double", {REG_SZ, "a\0b\0"s});
    data.Set("Colours", "bytes", {REG_SZ, "\x81\xFF\0"s});
    data.AddKey("Empty");
    return data;
}

std::string WhyNot(std::string_view json) {
    return ThrownText([&] { PrinterData::FromJson(json); });
}

}  // namespace

TEST(PrinterData, HasValuesUnderKeys) {
    const PrinterData data = Sample();
    ASSERT_NE(data.Find("Label Sizes\\258", "version"), nullptr);
    EXPECT_EQ(*data.Find("Label Sizes\\258", "version"), (PrinterValue{REG_DWORD, "\x01\0\0\0"s}));
    EXPECT_EQ(data.Find("Label Sizes", "version"), nullptr);
    EXPECT_EQ(data.Find("Label Sizes\\258", "width"), nullptr);
}

TEST(PrinterData, IgnoresTheCaseOfNames) {
    PrinterData data = Sample();
    ASSERT_NE(data.Find("LABEL sizes\\258", "VERSION"), nullptr);
    data.SetNumber("label sizes\\258", "Version", 2);
    EXPECT_EQ(data.Find("Label Sizes\\258", "version")->bytes[0], 2);
    EXPECT_THAT(data.SubKeys("label SIZES"), ElementsAre("258", "259"));
}

TEST(PrinterData, HasTheKeysAboveEveryKey) {
    const PrinterData data = Sample();
    EXPECT_TRUE(data.HasKey("Label Sizes"));
    EXPECT_TRUE(data.HasKey("Empty"));
    EXPECT_FALSE(data.HasKey("Label"));
    EXPECT_THAT(data.SubKeys("Empty"), IsEmpty());
    EXPECT_THAT(data.SubKeys(""), ElementsAre("Colours", "Empty", "Label Sizes"));
}

TEST(PrinterData, SurvivesTheConversionToReadableJson) {
    const PrinterData data = Sample();
    const std::string json = data.ToJson();
    EXPECT_THAT(json, HasSubstr("\"version\": 1"));
    EXPECT_THAT(json, HasSubstr("\"units\": 4294967295"));
    EXPECT_THAT(json, HasSubstr("\"hex\": \"007FFF\""));
    EXPECT_EQ(PrinterData::FromJson(json), data);
    EXPECT_EQ(PrinterData::FromJson("{}"), PrinterData());
}

TEST(PrinterData, SaysWhyATextIsNotPrinterData) {
    EXPECT_THAT(WhyNot("[1]"), HasSubstr("not an object of keys"));
    EXPECT_THAT(WhyNot("{\"Forms\": 3}"), HasSubstr("\"Forms\" is not an object of values"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": -1}}"), HasSubstr("0 to 4294967295"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": 4294967296}}"), HasSubstr("0 to 4294967295"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": 1.5}}"), HasSubstr("0 to 4294967295"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": {\"type\": 3, \"hex\": \"0\"}}}"), HasSubstr("odd number"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": {\"type\": 3, \"hex\": \"0x\"}}}"), HasSubstr("0 to F"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": {\"hex\": \"00\"}}}"), HasSubstr("type"));
    EXPECT_THAT(WhyNot("{\"A\": {\"n\": null}}"), Not(IsEmpty()));
    EXPECT_THAT(WhyNot("{\"A\": "), Not(IsEmpty()));
    EXPECT_THAT(WhyNot(""), Not(IsEmpty()));
}

TEST(PrinterData, IsSavedToAFile) {
    const ScratchFolder scratch;
    const auto file = scratch.Write("labels.json", "something else");
    Sample().Save(file);
    EXPECT_EQ(PrinterData::Load(file), Sample());
    EXPECT_FALSE(exists(scratch.Path() / "labels.json.part0"));
}

TEST(PrinterData, SaysWhichFileCannotBeReadOrWritten) {
    const ScratchFolder scratch;
    const auto bad = scratch.Write("bad.json", "{");
    EXPECT_THAT(ThrownText([&] { PrinterData::Load(bad); }), HasSubstr("bad.json: "));
    EXPECT_THAT(ThrownText([&] { PrinterData::Load(scratch.Path() / "absent.json"); }),
                HasSubstr("absent.json can't be opened"));
    EXPECT_THAT(ThrownText([&] { Sample().Save(scratch.Path() / "absent" / "labels.json"); }),
                HasSubstr("labels.json can't be written"));
}

}  // namespace orvex::tools
