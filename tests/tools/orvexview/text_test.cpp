// Tables, base64 and the settings in words.
#include <gtest/gtest.h>

#include "tests/tools/common/thrown_text.h"
#include "tools/orvexview/base64_decoder.h"
#include "tools/orvexview/report.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

using namespace std::string_literals;

namespace {

std::string Decoded(std::string_view text) {
    const std::vector<uint8_t> bytes = DecodeBase64(text);
    return {bytes.begin(), bytes.end()};
}

std::string Base64Error(std::string_view text) {
    return ThrownText([&] { DecodeBase64(text); });
}

}  // namespace

TEST(Base64, DecodesEveryLengthOfTheLastGroup) {
    EXPECT_EQ(Decoded(""), "");
    EXPECT_EQ(Decoded("Zg=="), "f");
    EXPECT_EQ(Decoded("Zm8="), "fo");
    EXPECT_EQ(Decoded("Zm9v"), "foo");
    EXPECT_EQ(Decoded("Zm9vYg=="), "foob");
}

TEST(Base64, DecodesEveryDigit) {
    const std::string expected =
        "\x00\x10\x83\x10\x51\x87\x20\x92\x8B\x30\xD3\x8F\x41\x14\x93\x51\x55\x97\x61\x96\x9B\x71\xD7\x9F"
        "\x82\x18\xA3\x92\x59\xA7\xA2\x9A\xAB\xB2\xDB\xAF\xC3\x1C\xB3\xD3\x5D\xB7\xE3\x9E\xBB\xF3\xDF\xBF"s;
    EXPECT_EQ(Decoded("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"), expected);
}

TEST(Base64, NamesTheWrongCharacter) {
    EXPECT_EQ(Base64Error("Zm9"), "base64 text of 3 characters; expected a multiple of 4");
    EXPECT_EQ(Base64Error("Zm\n9"), "\"\\x0A\" at character 2 of base64 text; expected a base64 digit");
    EXPECT_EQ(Base64Error("Z==="), "\"=\" at character 1 of base64 text; expected a base64 digit");
    EXPECT_EQ(Base64Error("Zg==Zg=="), "\"=\" at character 2 of base64 text; expected a base64 digit");
}

TEST(Base64, CountsDigitsUpToTheFirstOtherCharacter) {
    EXPECT_EQ(CountBase64Digits(""), 0u);
    EXPECT_EQ(CountBase64Digits("AZaz09+/"), 8u);
    EXPECT_EQ(CountBase64Digits("AB=="), 2u);
    EXPECT_EQ(CountBase64Digits("\xFF"), 0u);
}

TEST(Table, ColumnsAreAsWideAsTheirWidestCell) {
    Table table({"A", "Long title", "C"});
    table.Add({"value", "x", "y"});
    table.Add({"\xC3\xB6\xC3\xB6", "", ""});
    EXPECT_EQ(table.Text(),
              "A      Long title  C\n"
              "-----  ----------  -\n"
              "value  x           y\n"
              "\xC3\xB6\xC3\xB6\n");
}

TEST(HeaderMeanings, ExplainsASettingAndItsValue) {
    EXPECT_EQ(MeaningOf("COPIES", "3"), "copies of the job");
    EXPECT_EQ(MeaningOf("ALIGN", "0"), "place under the print head: right");
    EXPECT_EQ(MeaningOf("ALIGN", "1"), "place under the print head: centre");
    EXPECT_EQ(MeaningOf("ALIGN", "2"), "place under the print head: left");
    EXPECT_EQ(MeaningOf("COLLATE", "1"), "copies in sets: yes");
    EXPECT_EQ(MeaningOf("PURGEBAR", "2"), "purge bar: behind the image");
    EXPECT_EQ(MeaningOf("PHOFFSET", "-15"), "print-head offset across the paper: -1.5 mm");
    EXPECT_EQ(MeaningOf("JOB NAME", "anything"), "name of the document");
}

TEST(HeaderMeanings, SaysThatAValueIsUnknown) {
    EXPECT_EQ(MeaningOf("ALIGN", "3"), "place under the print head: not a known value");
    EXPECT_EQ(MeaningOf("ALIGN", "-1"), "place under the print head: not a known value");
    EXPECT_EQ(MeaningOf("KWS", "2"),
              "nozzles are kept wet with a faint pattern where nothing is printed: not a known value");
    EXPECT_EQ(MeaningOf("COLLATE", ""), "copies in sets: not a number");
    EXPECT_EQ(MeaningOf("PHOFFSET", "9999999999"), "print-head offset across the paper: not a number");
    EXPECT_EQ(MeaningOf("WHATEVER", "1"), "");
}

}  // namespace orvex::tools::view
