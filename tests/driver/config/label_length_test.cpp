#include "driver/config/label_sizes.h"

#include <gtest/gtest.h>

#include <string>

#include "driver/support/text.h"

namespace orvex {

TEST(LabelLength, IsInTenthsOfAMillimeterWhateverTheUnit) {
    EXPECT_EQ(LabelLengthTenthsMm("8.500", 1), 2159);
    EXPECT_EQ(LabelLengthTenthsMm("11.000", 1), 2794);
    EXPECT_EQ(LabelLengthTenthsMm("4", 1), 1016);
    EXPECT_EQ(LabelLengthTenthsMm("100", 0), 1000);
    EXPECT_EQ(LabelLengthTenthsMm("1000", 2), 1000);
    EXPECT_EQ(LabelLengthTenthsMm("1000", 0xFFFFFFFF), 1000);
}

TEST(LabelLength, IsRoundedByAddingAHalfAndCutting) {
    EXPECT_EQ(LabelLengthTenthsMm("10.04", 0), 100);
    EXPECT_EQ(LabelLengthTenthsMm("10.05", 0), 101);
    EXPECT_EQ(LabelLengthTenthsMm("0.4", 2), 0);
    EXPECT_EQ(LabelLengthTenthsMm("-5", 0), -49);
    EXPECT_EQ(LabelLengthTenthsMm("-0.4", 2), 0);
}

TEST(LabelLength, ATextThatIsNoNumberIsZero) {
    for (const char* text : {"", "abc", "1,5", "4 in", "1e3"})
        EXPECT_EQ(LabelLengthTenthsMm(text, 0), 0) << text;
}

TEST(LabelLength, KeepsItsLowSixteenBits) {
    EXPECT_EQ(LabelLengthTenthsMm("32767", 2), 32767);
    EXPECT_EQ(LabelLengthTenthsMm("32767.4", 2), 32767);
    EXPECT_EQ(LabelLengthTenthsMm("32767.5", 2), -32768);
    EXPECT_EQ(LabelLengthTenthsMm("4000", 0), 40000 - 65536);
    EXPECT_EQ(LabelLengthTenthsMm("65535", 2), -1);
    EXPECT_EQ(LabelLengthTenthsMm("65536", 2), 0);
    EXPECT_EQ(LabelLengthTenthsMm("67695", 2), 2159);
    EXPECT_EQ(LabelLengthTenthsMm("-32768", 2), -32767);
    EXPECT_EQ(LabelLengthTenthsMm("-32769", 2), -32768);
    EXPECT_EQ(LabelLengthTenthsMm("-32769.5", 2), 32767);
    EXPECT_EQ(LabelLengthTenthsMm("-65537.5", 2), -1);
}

TEST(LabelLength, BeyondThirtyTwoBitsKeepsItsLowSixteenBits) {
    EXPECT_EQ(LabelLengthTenthsMm("2147483649", 2), 1);
    EXPECT_EQ(LabelLengthTenthsMm("4294967299", 2), 3);
    EXPECT_EQ(LabelLengthTenthsMm("-4294967300", 2), -3);
    EXPECT_EQ(LabelLengthTenthsMm("9999999", 1), 2539999746 % 65536) << "the longest text of a label";
    EXPECT_EQ(LabelLengthTenthsMm("9223372036854774784", 2), -1024) << "2^63 - 1024, the last below 2^63";
    EXPECT_EQ(LabelLengthTenthsMm("-9223372036854774784", 2), 1024);
}

TEST(LabelLength, BeyondSixtyFourBitsIsZero) {
    EXPECT_EQ(LabelLengthTenthsMm("9223372036854775808", 2), 0);
    EXPECT_EQ(LabelLengthTenthsMm("9223372036854777856", 2), 0) << "2^63 + 2048";
    EXPECT_EQ(LabelLengthTenthsMm("-9223372036854777856", 2), 0);
    EXPECT_EQ(LabelLengthTenthsMm(std::string(400, '9'), 0), 0);
    EXPECT_EQ(LabelLengthTenthsMm("-" + std::string(400, '9'), 0), 0);
}

TEST(LabelLength, AFieldWithoutTerminatorIsReadToItsEnd) {
    const char field[8] = {'1', '2', '3', '.', '4', '5', '6', '7'};
    EXPECT_EQ(LabelLengthTenthsMm(FieldText(field), 0), 1235);
}

}  // namespace orvex
