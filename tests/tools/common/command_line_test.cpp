#include "tools/common/command_line.h"

#include <gmock/gmock.h>

#include "tests/tools/common/thrown_text.h"

namespace orvex::tools {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CommandLineTest : public testing::Test {
  protected:
    CommandLineTest() : line_("orvextest", "Tests.", "[options] FILE", "An example.", "--help of the test") {
        line_.Files("FILE", "", "what to read");
        line_.Group("Ways");
        line_.Flag("--fast", "in a hurry");
        line_.Text("-s,--size", "N", "how large");
        line_.Texts("--page", "N", "which");
        line_.Flag("--slow", "at leisure");
        line_.Exclude("--slow", "--fast");
        line_.Text("--step", "N", "how far");
        line_.Need("--step", "--slow");
        line_.Version("the version", "the help");
    }

    bool Read(const std::vector<std::string>& arguments) { return line_.Read(arguments, out_); }

    CommandLine line_;
    std::ostringstream out_;
};

}  // namespace

TEST_F(CommandLineTest, OptionsThatWereNotGivenHaveNoValue) {
    EXPECT_TRUE(Read({}));
    EXPECT_FALSE(line_.Has("--fast"));
    EXPECT_EQ(line_.Value("--size"), std::nullopt);
    EXPECT_EQ(line_.Value("FILE"), std::nullopt);
    EXPECT_THAT(line_.Values("--page"), IsEmpty());
}

TEST_F(CommandLineTest, OfAnOptionGivenTwiceTheLastValueCounts) {
    EXPECT_TRUE(Read({"--fast", "-s", "4", "/a", "--size=6"}));
    EXPECT_TRUE(line_.Has("--fast"));
    EXPECT_EQ(line_.Value("--size"), "6");
    EXPECT_EQ(line_.Value("FILE"), "/a") << "a name may begin with a slash";
}

TEST_F(CommandLineTest, AnOptionWithSeveralValuesKeepsTheirOrder) {
    EXPECT_TRUE(Read({"--page", "4", "name", "--page", "2"}));
    EXPECT_THAT(line_.Values("--page"), ElementsAre("4", "2"));
    EXPECT_EQ(line_.Value("FILE"), "name") << "each takes one value";
}

TEST_F(CommandLineTest, AFlagCanBeSwitchedOff) {
    EXPECT_TRUE(Read({"--fast=off"}));
    EXPECT_FALSE(line_.Has("--fast"));
    EXPECT_EQ(line_.Value("--fast"), "off");
}

TEST_F(CommandLineTest, ErrorsSayHowToGetHelp) {
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{"--quick"},
                                                  {"--slow", "--fast"},
                                                  {"--step", "1"},
                                                  {"one", "two"},
                                                  {"--size"}}) {
        EXPECT_THAT(ThrownText<OptionError>([&] { Read(wrong); }),
                    HasSubstr("; --help of the test shows what"))
            << wrong.front();
    }
    line_.Require("FILE");
    EXPECT_EQ(ThrownText<OptionError>([&] { Read({}); }),
              "FILE is required; --help of the test shows what there is");
}

TEST_F(CommandLineTest, HelpIsShownEvenIfTheRestIsWrong) {
    EXPECT_FALSE(Read({"--size", "-h", "--quick"}));
    EXPECT_THAT(out_.str(), HasSubstr("Usage: orvextest [options] FILE\n"));
    EXPECT_THAT(out_.str(), HasSubstr("Ways:\n  --fast                      in a hurry\n"));
    EXPECT_THAT(out_.str(), HasSubstr("  -s,--size N                 how large\n"));
    EXPECT_THAT(out_.str(), HasSubstr("the version\n  -h,--help                   the help\n"));
    EXPECT_THAT(out_.str(), HasSubstr("An example."));
}

TEST_F(CommandLineTest, TheVersionNamesTheProgram) {
    EXPECT_FALSE(Read({"--version"}));
    EXPECT_THAT(out_.str(), testing::StartsWith("orvextest 1."));
}

TEST(WrongValue, NamesTheOptionTheValueAndTheRange) {
    EXPECT_STREQ(WrongValue("--size", "\x01", "1 to 4").what(),
                 "--size: \"\\x01\" is not allowed; it takes 1 to 4");
}

TEST(NumberIn, RefusesNumbersOutOfRange) {
    EXPECT_EQ(NumberIn("--size", "1", 1, 4, ""), 1);
    EXPECT_EQ(NumberIn("--size", "4", 1, 4, ""), 4);
    for (const char* wrong : {"0.9", "4.1", "x", ""}) {
        EXPECT_EQ(ThrownText<OptionError>([&] { NumberIn("--size", wrong, 1, 4, "1 to 4"); }),
                  WrongValue("--size", wrong, "1 to 4").what());
    }
}

}  // namespace orvex::tools
