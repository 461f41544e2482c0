#include "driver/support/log_format.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

namespace orvex {

namespace {

class StringSink final : public TextSink {
  public:
    void Append(std::string_view piece) override { text.append(piece); }
    std::string text;
};

template <typename... Arguments>
std::string Format(const char* format, const Arguments&... arguments) {
    const LogArgument list[sizeof...(arguments) + 1] = {LogArgument(arguments)...};
    StringSink sink;
    FormatLogText(sink, format, list, sizeof...(arguments));
    return sink.text;
}

}  // namespace

TEST(LogFormat, WritesIntegersAsPrintfDoes) {
    EXPECT_EQ(Format("%d|%5d|%-5d|%05d|%+d|%.3d", -3, 42, 42, 42, 42, 7), "-3|   42|42   |00042|+42|007");
    EXPECT_EQ(Format("%x|%X|%#x|%o|%u|%lu", 255, 255, 255, 8, 4000000000u, 4000000000u),
              "ff|FF|0xff|10|4000000000|4000000000");
}

TEST(LogFormat, WritesEveryWidthPrecisionAndFlagAsPrintfDoes) {
    const auto printed = [](const std::string& format, auto value) {
        char text[256];
        snprintf(text, sizeof text, format.c_str(), value);
        return std::string(text);
    };
    for (const std::string flags : {"", "-", "+", " ", "0", "#", "-+", "+0", "++ #0"}) {
        for (const std::string width : {"", "1", "9", "10", "20", "105"}) {
            for (const std::string precision : {"", ".", ".0", ".1", ".10", ".19"}) {
                const std::string start = "%" + flags + width + precision;
                for (const int value : {0, 7, -42, 1234567890}) {
                    for (const char type : {'d', 'i'}) {
                        EXPECT_EQ(Format((start + type).c_str(), value), printed(start + type, value));
                    }
                    for (const char type : {'u', 'x', 'X', 'o'}) {
                        EXPECT_EQ(Format((start + type).c_str(), value),
                                  printed(start + type, static_cast<unsigned>(value)));
                    }
                }
                for (const double value : {0.0, -2.5, 1e10, 1.0 / 3}) {
                    for (const char type : {'e', 'f', 'g', 'E', 'G'}) {
                        EXPECT_EQ(Format((start + type).c_str(), value), printed(start + type, value));
                    }
                }
                if (flags.empty() || flags == "-") {
                    EXPECT_EQ(Format((start + "s").c_str(), "a text"), printed(start + "s", "a text"));
                    EXPECT_EQ(Format((start + "S").c_str(), L"a text"), printed(start + "s", "a text"));
                }
            }
        }
    }
    for (const char* format : {"%c", "%2c", "%-10c", "%40c"}) {
        EXPECT_EQ(Format(format, 'q'), printed(format, 'q'));
    }
    EXPECT_EQ(Format("%20p|%-20p|", static_cast<const void*>(nullptr), static_cast<const void*>(nullptr)),
              "    0000000000000000|0000000000000000    |");
}

TEST(LogFormat, TakesTheFirstFiveFlags) {
    EXPECT_EQ(Format("%++++05d|%+++++05d", 7, 7), "+0007|   +7");
}

TEST(LogFormat, WritesNoFieldWiderThan512Characters) {
    EXPECT_EQ(Format("%600d", 1), std::string(511, ' ') + "1");
    EXPECT_EQ(Format("%.99999999999d", 1), std::string(511, '0') + "1");
    EXPECT_EQ(Format("%-513s|", "a"), "a" + std::string(511, ' ') + "|");
    EXPECT_EQ(Format("%.600s", std::string(600, 'a').c_str()), std::string(512, 'a'));
}

TEST(LogFormat, TakesIntegersAs32BitsUnlessTheConversionIsWider) {
    const int64_t wide = 0x1'2345'6789;
    EXPECT_EQ(Format("%x %ld %llx %I64x %zx", wide, wide, wide, wide, wide),
              "23456789 591751049 123456789 123456789 123456789");
    EXPECT_EQ(Format("%d %u", 0xFFFFFFFFu, -1), "-1 4294967295");
    EXPECT_EQ(Format("%lld", std::numeric_limits<int64_t>::min()), "-9223372036854775808");
}

TEST(LogFormat, WritesPointersWithSixteenDigits) {
    EXPECT_EQ(Format("%p", reinterpret_cast<const void*>(0x1234ABCD)), "000000001234ABCD");
    EXPECT_EQ(Format("%x", reinterpret_cast<const void*>(0x1'1234ABCD)), "1234abcd");
    EXPECT_EQ(Format("%p", static_cast<const void*>(nullptr)), "0000000000000000");
}

TEST(LogFormat, WritesNarrowAndWideTexts) {
    EXPECT_EQ(Format("[%s] [%S]", "narrow", L"wide"), "[narrow] [wide]");
    EXPECT_EQ(Format("%-8s|%8s|%.2s", "ab", "ab", "abcd"), "ab      |      ab|ab");
    EXPECT_EQ(Format("%-6S|%6S|%.1S", L"ab", L"ab", L"ab"), "ab    |    ab|a");
    EXPECT_EQ(Format("%S", static_cast<const WCHAR*>(nullptr)), "(null)");
}

TEST(LogFormat, WritesWideTextAsUtf8) {
    EXPECT_EQ(Format("%S", L"\u00E4\u20AC\u65E5"), "\xC3\xA4\xE2\x82\xAC\xE6\x97\xA5");
    const WCHAR pair[] = {0xD83D, 0xDE00, 0};
    EXPECT_EQ(Format("%S", pair), "\xF0\x9F\x98\x80");
    const WCHAR lone[] = {'a', 0xD800, 'b', 0};
    EXPECT_EQ(Format("%S", lone),
              "a\xEF\xBF\xBD"
              "b");
    const WCHAR last[] = {'a', 0xD800, 0};
    EXPECT_EQ(Format("%S", last), "a\xEF\xBF\xBD");
}

TEST(LogFormat, WritesLongTextsOfWideCharacters) {
    std::u16string text;
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        text += u'\u20AC';
        expected += "\xE2\x82\xAC";
    }
    EXPECT_EQ(Format("%S", WideView{reinterpret_cast<const WCHAR*>(text.data()), text.size()}), expected);
    // The surrogate pair is where the text is cut, after as many bytes as there can be.
    text.replace(63, 1, u"\xD83D\xDE00");
    expected.replace(63 * 3, 3, "\xF0\x9F\x98\x80");
    EXPECT_EQ(Format("%S", WideView{reinterpret_cast<const WCHAR*>(text.data()), text.size()}), expected);
}

TEST(LogFormat, KeepsLongWideTextsWholeAroundSurrogatePairs) {
    for (size_t before = 0; before < 4; ++before) {
        std::u16string text(before, u'x');
        std::string expected(before, 'x');
        for (int i = 0; i < 200; ++i) {
            text += i % 3 == 0 ? u"\xD83D\xDE00" : u"x";
            expected += i % 3 == 0 ? "\xF0\x9F\x98\x80" : "x";
        }
        const WideView view{reinterpret_cast<const WCHAR*>(text.data()), text.size()};
        EXPECT_EQ(Format("%S", view), expected) << before;
    }
}

TEST(LogFormat, ReadsBoundedFieldsUpToTheirSize) {
    const char field[4] = {'a', 'b', 'c', 'd'};
    const WCHAR wide[3] = {'x', 'y', 'z'};
    EXPECT_EQ(Format("%s %S", FieldText(field), FieldText(wide)), "abcd xyz");
}

TEST(LogFormat, WritesNumbersAndCharacters) {
    EXPECT_EQ(Format("%lf|%.2f|%8.3f|%g", 1.5, 2.0, -3.25, 0.5), "1.500000|2.00|  -3.250|0.5");
    EXPECT_EQ(Format("%c%c%%", '*', 'o'), "*o%");
    EXPECT_EQ(Format("%lf", std::numeric_limits<double>::infinity()), "inf");
}

TEST(LogFormat, ShowsAQuestionMarkForAnArgumentThatDoesNotFit) {
    EXPECT_EQ(Format("%s %d %S %lf", 1, "text", "narrow", 3), "? ? ? ?");
    EXPECT_EQ(Format("%c %p", "text", "text"), "? ?");
    EXPECT_EQ(Format("%d %d", 1), "1 ?");
    EXPECT_EQ(Format("%q", 1), "?");
    EXPECT_EQ(Format("%~d %1:d ~", 1, 1), "?d ?d ~");
    EXPECT_EQ(Format("ends with %"), "ends with ?");

    const auto expect = [](char type, std::string_view types, const auto& argument) {
        const char format[] = {'%', type, '\0'};
        const bool fits = types.find(type) != std::string_view::npos;
        EXPECT_EQ(Format(format, argument) == "?", !fits) << format;
    };
    for (char type = '!'; type <= '~'; ++type) {
        if (std::string_view("-+#0123456789.hlzjt%").find(type) != std::string_view::npos) continue;
        expect(type, "diuxXocp", 1);
        expect(type, "s", "text");
        expect(type, "S", L"text");
        expect(type, "efgEG", 1.5);
    }
}

}  // namespace orvex
