#include "tools/common/printable_text.h"

#include <gtest/gtest.h>

namespace orvex::tools {

using namespace std::string_literals;

TEST(PrintableText, KeepsWhatCanBeRead) {
    EXPECT_EQ(PrintableText("Label 1"), "Label 1");
    EXPECT_EQ(PrintableText("Gr\xC3\xB6\xC3\x9F"
                            "e \xE2\x82\xAC \xF0\x9F\x8D\xB7"),
              "Gr\xC3\xB6\xC3\x9F"
              "e \xE2\x82\xAC \xF0\x9F\x8D\xB7");
}

TEST(PrintableText, EscapesEverythingElse) {
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

TEST(PrintableText, TruncatesLongTexts) {
    EXPECT_EQ(PrintableText("abcdef", 6), "abcdef");
    EXPECT_EQ(PrintableText("abcdefg", 6), "abcdef...");
    EXPECT_EQ(PrintableText("abcde\xC3\xB6g", 6), "abcde\xC3\xB6...") << "at a whole character";
}

}  // namespace orvex::tools
