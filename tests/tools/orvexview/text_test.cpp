// Tables, texts of unknown origin, base64, the settings in words.
#include <gtest/gtest.h>

#include "tools/orvexview/base64_decoder.h"
#include "tools/orvexview/header_meanings.h"
#include "tools/orvexview/printable_text.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

using namespace std::string_literals;

namespace {

std::string Decoded(std::string_view text) {
    const std::vector<uint8_t> bytes = DecodeBase64(text);
    return {bytes.begin(), bytes.end()};
}

std::string Base64Error(std::string_view text) {
    try {
        DecodeBase64(text);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "none";
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

TEST(Base64, NamesWhatIsNone) {
    EXPECT_EQ(Base64Error("Zm9"), "base64 text of 3 characters; expected a multiple of 4");
    EXPECT_EQ(Base64Error("Zm\n9"), "\"\\x0A\" at character 2 of base64 text; expected a base64 digit");
    EXPECT_EQ(Base64Error("Z==="), "\"=\" at character 1 of base64 text; expected a base64 digit");
    EXPECT_EQ(Base64Error("Zg==Zg=="), "\"=\" at character 2 of base64 text; expected a base64 digit");
}

TEST(PrintableText, KeepsWhatCanBeRead) {
    EXPECT_EQ(PrintableText("Label 1"), "Label 1");
    EXPECT_EQ(PrintableText("Gr\xC3\xB6\xC3\x9F"
                            "e \xE2\x82\xAC \xF0\x9F\x8D\xB7"),
              "Gr\xC3\xB6\xC3\x9F"
              "e \xE2\x82\xAC \xF0\x9F\x8D\xB7");
}

TEST(PrintableText, WritesEverythingElseInNumbers) {
    EXPECT_EQ(PrintableText("a\nb\x7F\x1B[2J"), "a\\x0Ab\\x7F\\x1B[2J");
    EXPECT_EQ(PrintableText("\0x"s), "\\x00x");
    EXPECT_EQ(PrintableText("caf\xE9"), "caf\\xE9") << "cut short";
    EXPECT_EQ(PrintableText("\xC3("), "\\xC3(");
    EXPECT_EQ(PrintableText("\xC0\xAF"), "\\xC0\\xAF") << "overlong";
    EXPECT_EQ(PrintableText("\xE0\x80\xAF"), "\\xE0\\x80\\xAF") << "overlong";
    EXPECT_EQ(PrintableText("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "a surrogate";
    EXPECT_EQ(PrintableText("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80") << "past the last character";
    EXPECT_EQ(PrintableText("\xC2\x85"), "\\xC2\\x85") << "a control character";
    EXPECT_EQ(PrintableText("\x80\xFF"), "\\x80\\xFF");
}

TEST(PrintableText, CutsLongTexts) {
    EXPECT_EQ(PrintableText("abcdef", 6), "abcdef");
    EXPECT_EQ(PrintableText("abcdefg", 6), "abcdef...");
    EXPECT_EQ(PrintableText("abcde\xC3\xB6g", 6), "abcde\xC3\xB6...") << "at a whole character";
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

TEST(Table, NumbersHaveTheirDecimals) {
    EXPECT_EQ(SizeText(2362, 3543), "2362 x 3543");
    EXPECT_EQ(DecimalText(1.0 / 3, 2), "0.33");
    EXPECT_EQ(DecimalText(-2, 1), "-2.0");
}

TEST(HeaderMeanings, SaysWhatASettingIsAndWhatItsValueMeans) {
    EXPECT_EQ(MeaningOf("COPIES", "3"), "copies of the job");
    EXPECT_EQ(MeaningOf("ALIGN", "0"), "place under the print head: right");
    EXPECT_EQ(MeaningOf("ALIGN", "1"), "place under the print head: centre");
    EXPECT_EQ(MeaningOf("ALIGN", "2"), "place under the print head: left");
    EXPECT_EQ(MeaningOf("COLLATE", "1"), "copies in sets: yes");
    EXPECT_EQ(MeaningOf("PURGEBAR", "2"), "purge bar: behind the image");
    EXPECT_EQ(MeaningOf("PHOFFSET", "-15"), "print-head offset across the paper: -1.5 mm");
    EXPECT_EQ(MeaningOf("JOB NAME", "anything"), "name of the document");
}

TEST(HeaderMeanings, SaysSoWhenAValueMeansNothing) {
    EXPECT_EQ(MeaningOf("ALIGN", "3"), "place under the print head: not a known value");
    EXPECT_EQ(MeaningOf("ALIGN", "-1"), "place under the print head: not a known value");
    EXPECT_EQ(MeaningOf("KWS", "2"),
              "nozzles are kept wet with a faint pattern where nothing is printed: not a known value");
    EXPECT_EQ(MeaningOf("COLLATE", ""), "copies in sets: not a number");
    EXPECT_EQ(MeaningOf("PHOFFSET", "9999999999"), "print-head offset across the paper: not a number");
    EXPECT_EQ(MeaningOf("WHATEVER", "1"), "");
}

}  // namespace orvex::tools::view
