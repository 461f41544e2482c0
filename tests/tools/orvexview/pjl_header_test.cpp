#include "tools/orvexview/pjl_header.h"

#include <gmock/gmock.h>

#include "tests/tools/common/thrown_text.h"
#include "tests/tools/orvexview/made_files.h"

namespace orvex::tools::view {

using testing::ElementsAre;

namespace {

constexpr std::string_view kStart = "\x1B%-12345X@PJL\n";
constexpr std::string_view kEnd = "@PJL ENTER LANGUAGE=STANDIN\n";

PjlHeader ReadHeader(const std::string& text) {
    MemorySource source(AsBytes(text));
    ByteReader reader(source);
    PjlHeader header = ReadPjlHeader(reader);
    EXPECT_EQ(reader.Offset(), text.size());
    return header;
}

PjlHeader ReadLines(const std::string& lines) {
    return ReadHeader(std::string(kStart) + lines + std::string(kEnd));
}

std::string HeaderErrorOf(const std::string& text) {
    MemorySource source(AsBytes(text));
    ByteReader reader(source);
    return ThrownText<PrintFileError>([&] { ReadPjlHeader(reader); });
}

std::string ErrorOfLines(const std::string& lines) {
    return HeaderErrorOf(std::string(kStart) + lines);
}

}  // namespace

TEST(PjlHeader, KeepsTheVariablesInTheirOrder) {
    const PjlHeader header = ReadLines(
        "@PJL SET COPIES=2\n@PJL SET PHOFFSET=-20\n@PJL JOB NAME=\"Labels, June\"\n"
        "@PJL SET PROFILE=\"Default\"\n@PJL COMMENT \"who made it\"\n");
    EXPECT_THAT(
        header.variables,
        ElementsAre(HeaderVariable{"COPIES", "2"}, HeaderVariable{"PHOFFSET", "-20"},
                    HeaderVariable{"JOB NAME", "Labels, June"}, HeaderVariable{"PROFILE", "Default"}));
    EXPECT_EQ(header.comment, "who made it");
    EXPECT_FALSE(header.thumbnail);
}

TEST(PjlHeader, KeepsTheThumbnailApart) {
    const PjlHeader header = ReadLines("@PJL SET COPIES=1\n@PJL SET QRV_THUMBNAIL=\"iVBORw0=\"\n");
    EXPECT_THAT(header.variables, ElementsAre(HeaderVariable{"COPIES", "1"}));
    ASSERT_TRUE(header.thumbnail);
    EXPECT_EQ(header.thumbnail->size, 8u);
    EXPECT_EQ(header.thumbnail->offset, kStart.size() + 18 + 24);
    EXPECT_NE(ReadLines("@PJL SET COPIES=1\n@PJL SET QRV_THUMBNAIL=\"iVBORw8=\"\n"), header);
}

TEST(PjlHeader, AThumbnailIsBase64) {
    const auto errorOf = [](const std::string& value) {
        return ErrorOfLines("@PJL SET QRV_THUMBNAIL=\"" + value);
    };
    const std::string expected =
        " characters of the thumbnail; expected base64 digits, a multiple of 4 and at most 1073741824, and a "
        "closing quote";
    EXPECT_EQ(errorOf("Zm9v\n"), "offset 42: \"\\x0A\" after 4" + expected);
    EXPECT_EQ(errorOf("Zm9"), "offset 41: \"\" after 3" + expected);
    EXPECT_EQ(errorOf("Zm9\"\n"), "offset 41: \"\"\\x0A\" after 3" + expected);
    EXPECT_EQ(errorOf("Z===\"\n"), "offset 41: \"=\"\" after 3" + expected);
    EXPECT_EQ(errorOf("Zg==Zg==\"\n"), "offset 42: \"Zg\" after 4" + expected);
    EXPECT_EQ(ReadLines("@PJL SET QRV_THUMBNAIL=\"Zm8=\"\n").thumbnail->size, 4u);
    EXPECT_EQ(ReadLines("@PJL SET QRV_THUMBNAIL=\"\"\n").thumbnail->size, 0u);
}

TEST(PjlHeader, AQuotedValueMayBeEmptyOrContainLineFeedsAndQuotes) {
    const PjlHeader header = ReadLines(
        "@PJL JOB NAME=\"one\n@PJL two \"2\" \nthree\"\n@PJL SET COPIES=1\n@PJL SET PROFILE=\"\"\n"
        "@PJL SET A=\"\nx\"\n");
    EXPECT_THAT(header.variables, ElementsAre(HeaderVariable{"JOB NAME", "one\n@PJL two \"2\" \nthree"},
                                              HeaderVariable{"COPIES", "1"}, HeaderVariable{"PROFILE", ""},
                                              HeaderVariable{"A", "\nx"}));
}

TEST(PjlHeader, OnlyWholeValuesAreNumbers) {
    const PjlHeader header = ReadLines(
        "@PJL SET A=-20\n@PJL SET B=12x\n@PJL SET C=\n@PJL SET D=1000000\n@PJL SET E=1000001\n"
        "@PJL SET F=99999999999\n@PJL SET A=7\n");
    EXPECT_EQ(header.FindNumber("A"), -20) << "the first of that name";
    EXPECT_EQ(header.FindNumber("B"), std::nullopt);
    EXPECT_EQ(header.FindNumber("C"), std::nullopt);
    EXPECT_EQ(header.FindNumber("D"), 1000000);
    EXPECT_EQ(header.FindNumber("E"), std::nullopt);
    EXPECT_EQ(header.FindNumber("F"), std::nullopt);
    EXPECT_EQ(header.FindNumber("G"), std::nullopt);
    EXPECT_EQ(*header.Find("B"), "12x");
    EXPECT_EQ(header.Find("G"), nullptr);
}

TEST(PjlHeader, SaysWhatIsWrongWithItsOpening) {
    EXPECT_EQ(HeaderErrorOf(""), "offset 0: \"\"; expected the universal exit ESC%-12345X");
    EXPECT_EQ(HeaderErrorOf("\x89PNG\r\n\x1A\nabcdefgh"),
              "offset 0: \"\\x89PNG\\x0D\\x0A\\x1A\\x0Aabcd\"; expected the universal exit ESC%-12345X");
    EXPECT_EQ(HeaderErrorOf("\x1B%-12345X@PJX\n"), "offset 9: \"@PJX\\x0A\"; expected the line \"@PJL\"");
    EXPECT_EQ(HeaderErrorOf("\x1B%-12345X@PJL"), "offset 9: \"@PJL\"; expected the line \"@PJL\"");
}

TEST(PjlHeader, RecognizesAFramingChunkThatShouldHaveBeenDropped) {
    EXPECT_EQ(HeaderErrorOf(PrintJob({{{1}}}).chunks[0] + std::string(kStart)),
              "offset 0: the engine's framing chunk, which the driver should have dropped; expected the "
              "universal exit ESC%-12345X");
}

TEST(PjlHeader, SaysWhichLineIsWrong) {
    EXPECT_EQ(ErrorOfLines("@PJL SET COPIES=1\n@PJL INFO\x01\n@PJL ENTER LANGUAGE=STANDIN\n"),
              "offset 32: PJL line \"@PJL INFO\\x01\"; expected @PJL SET, @PJL JOB NAME, @PJL COMMENT or "
              "\"@PJL ENTER LANGUAGE=STANDIN\"");
    EXPECT_EQ(ErrorOfLines("@PJL SET COPIES\n"),
              "offset 14: PJL line \"@PJL SET COPIES\" sets nothing; expected NAME=VALUE");
    EXPECT_EQ(ErrorOfLines("@PJL SET =1\n"),
              "offset 14: PJL line \"@PJL SET =1\" sets nothing; expected NAME=VALUE");
}

TEST(PjlHeader, SaysWhereALineOrAValueEndsEarly) {
    EXPECT_EQ(ErrorOfLines("@PJL SET COP"),
              "offset 14: the file ends within a PJL line: \"@PJL SET COP\"; expected a line feed");
    EXPECT_EQ(ErrorOfLines("@PJL JOB NAME=\"ab\n"),
              "offset 32: the file ends within a PJL line: \"\"; expected a line feed");
}

}  // namespace orvex::tools::view
