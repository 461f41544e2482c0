#include "driver/config/label_sizes.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <string>

#include "driver/support/text.h"
#include "tests/kit/allocation_failure.h"

#ifndef _WIN32
#include <dlfcn.h>

namespace {

char* decimalSign = nullptr;  // overrides the one of the locale unless null

}  // namespace

// A machine need not have a locale whose decimal sign is not a point.
extern "C" lconv* localeconv() noexcept {
    static const auto original = reinterpret_cast<lconv* (*)()>(dlsym(RTLD_NEXT, "localeconv"));
    static lconv changed;
    changed = *original();
    if (decimalSign != nullptr) changed.decimal_point = decimalSign;
    return &changed;
}
#endif

namespace orvex {

namespace {

constexpr double kUntouched = 4711;

double Parsed(const char* text) {
    double out = kUntouched;
    EXPECT_EQ(ParseDecimal(text, &out), 0u) << text;
    return out;
}

DWORD Refused(const char* text) {
    double out = kUntouched;
    const DWORD code = ParseDecimal(text, &out);
    EXPECT_EQ(out, kUntouched) << text;
    return code;
}

}  // namespace

TEST(ParseDecimal, ReadsSignDigitsAndOnePoint) {
    EXPECT_EQ(Parsed("8.500"), 8.5);
    EXPECT_EQ(Parsed("+3"), 3);
    EXPECT_EQ(Parsed("-2."), -2);
    EXPECT_EQ(Parsed(".25"), 0.25);
    EXPECT_EQ(Parsed("007"), 7);
}

TEST(ParseDecimal, TextsWithoutDigitsAreZero) {
    for (const char* text : {"", "+", "-", ".", "-."}) EXPECT_EQ(Parsed(text), 0) << text;
}

TEST(ParseDecimal, AnyOtherCharacterIsRefusedAndLeavesTheNumberAlone) {
    for (const char* text :
         {"1,5", "1.2.3", "..", " 1", "1 ", "1e3", "0x10", "+-1", "--1", "1-", "nan", "inf", "1\n", "\xB2"}) {
        EXPECT_EQ(Refused(text), 0x2001001Bu) << text;
    }
}

TEST(ParseDecimal, OnlyDigitsAndAPointMayFollowADigit) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text = {'1', static_cast<char>(byte)};
        double out = 0;
        const bool belongs = (byte >= '0' && byte <= '9') || byte == '.';
        EXPECT_EQ(ParseDecimal(text.c_str(), &out), belongs ? 0 : 0x2001001Bu) << byte;
    }
}

TEST(ParseDecimal, NullTextsAndNullNumbersHaveCodesOfTheirOwn) {
    double out = kUntouched;
    EXPECT_EQ(ParseDecimal({}, &out), 0x20010008u);
    EXPECT_EQ(out, kUntouched);
    EXPECT_EQ(ParseDecimal("1", nullptr), 0x2001000Fu);
    EXPECT_EQ(ParseDecimal({}, nullptr), 0x20010008u);
}

TEST(ParseDecimal, ALongTextIsRefusedWhenOutOfMemory) {
    const std::string text(64, '1');
    const AllocationFailure memory(text.size() + 1);
    EXPECT_EQ(Refused(text.c_str()), 0x20010001u);
    EXPECT_EQ(memory.Count(), 1);
}

TEST(ParseDecimal, NeedsNoMemoryForAShortText) {
    for (const auto& [text, number] :
         {std::pair(std::string("12.75"), 12.75), {"0." + std::string(61, '3'), 1.0 / 3}}) {
        const AllocationFailure memory(text.size() + 1);
        EXPECT_NEAR(Parsed(text.c_str()), number, 1e-15);
        EXPECT_EQ(memory.Count(), 0);
    }
}

TEST(ParseDecimal, DoesNotDependOnTheLocale) {
    const std::string before = setlocale(LC_NUMERIC, nullptr);
    for (const char* locale : {"German_Germany.1252", "de-DE", "de_DE.UTF-8", "C"}) {
        if (setlocale(LC_NUMERIC, locale) == nullptr) continue;
        EXPECT_EQ(Parsed("8.5"), 8.5) << locale;
        EXPECT_EQ(Refused("8,5"), 0x2001001Bu) << locale;
    }
    setlocale(LC_NUMERIC, before.c_str());
}

#ifndef _WIN32
// The Windows build has locales with a comma: see the test before this one.
TEST(ParseDecimal, GivesTheDecimalSignOfTheLocaleToTheRuntime) {
    char comma[] = ",";
    decimalSign = comma;
    EXPECT_EQ(Parsed("8.5"), 8) << "the runtime is still in a locale with a point, and stops at the comma";
    decimalSign = nullptr;
    EXPECT_EQ(Parsed("8.5"), 8.5);
}
#endif

TEST(ParseDecimal, ReadsNumbersOfAnyLength) {
    EXPECT_EQ(Parsed(("0." + std::string(3000, '0') + "1").c_str()), 0);
    EXPECT_TRUE(std::isinf(Parsed(std::string(400, '9').c_str())));
}

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
