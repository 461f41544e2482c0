#include "driver/config/label_sizes.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <string>

#include "tests/kit/allocation_failure.h"

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
    const AllocationFailure memory(sizeof "12.75");
    EXPECT_EQ(Parsed("12.75"), 12.75);
    EXPECT_EQ(memory.Count(), 0);
    const std::string longest = "0." + std::string(61, '3');
    const AllocationFailure more(longest.size() + 1);
    EXPECT_NEAR(Parsed(longest.c_str()), 1.0 / 3, 1e-15);
    EXPECT_EQ(more.Count(), 0);
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

TEST(ParseDecimal, ReadsNumbersOfAnyLength) {
    EXPECT_EQ(Parsed(("0." + std::string(3000, '0') + "1").c_str()), 0);
    EXPECT_TRUE(std::isinf(Parsed(std::string(400, '9').c_str())));
}

}  // namespace orvex
