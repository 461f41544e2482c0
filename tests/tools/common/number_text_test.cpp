#include "tools/common/number_text.h"

#include <gtest/gtest.h>

namespace orvex::tools {

TEST(NumberText, WritesDecimals) {
    EXPECT_EQ(DecimalText(2, 1), "2.0");
    EXPECT_EQ(DecimalText(-0.25, 2), "-0.25");
    EXPECT_EQ(DecimalText(1.0 / 3, 2), "0.33");
    EXPECT_EQ(DecimalText(99.6, 0), "100");
}

TEST(NumberText, GroupsByThousands) {
    EXPECT_EQ(GroupedNumber(0), "0");
    EXPECT_EQ(GroupedNumber(999), "999");
    EXPECT_EQ(GroupedNumber(1000), "1,000");
    EXPECT_EQ(GroupedNumber(134217728), "134,217,728");
}

TEST(NumberText, WritesLengthsAndSizes) {
    EXPECT_EQ(MmText(1181, 300), "100.0");
    EXPECT_EQ(SizeText(2362, 3543), "2362 x 3543");
}

TEST(NumberText, ReadsDecimals) {
    EXPECT_EQ(ParseNumber("2.5"), 2.5);
    EXPECT_EQ(ParseNumber("-2."), -2.0);
    EXPECT_EQ(ParseNumber("+.5"), 0.5);
    for (const char* text :
         {"", "+", "-", ".", "2,5", "2.5mm", " 2", "2 ", "inf", "nan", "1e3", "0x10", "+-2"}) {
        EXPECT_FALSE(ParseNumber(text)) << text;
    }
    EXPECT_FALSE(ParseNumber(std::string(100, '9')));
}

TEST(NumberText, ReadsWholeNumbers) {
    EXPECT_EQ(ParseWhole("-100"), -100);
    EXPECT_EQ(ParseWhole("+7"), 7);
    for (const char* text : {"", "+", "1.0", "12x", "99999999999", " 1"})
        EXPECT_FALSE(ParseWhole(text)) << text;
}

}  // namespace orvex::tools
