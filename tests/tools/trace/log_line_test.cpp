#include "tools/trace/log_line.h"

#include <gmock/gmock.h>

namespace orvex::tools::trace {
namespace {

TEST(LogLineTest, TellsTimeThreadLevelAndMessage) {
    const auto line = ParseLogLine("[2026-11-22 12:41:15.924] [TID: 284] [Info]  Surface 709x472");
    ASSERT_TRUE(line);
    EXPECT_EQ(DateText(line->time), "2026-11-22");
    EXPECT_EQ(ClockText(line->time), "12:41:15.924");
    EXPECT_EQ(line->thread, 284u);
    EXPECT_EQ(line->level, Level::kInfo);
    EXPECT_EQ(line->message, "Surface 709x472");
}

TEST(LogLineTest, KnowsEveryLevel) {
    const auto level = [](const char* tag) {
        return ParseLogLine("[2026-01-02 03:04:05.006] [TID: 1] " + std::string(tag) + "x")->level;
    };
    EXPECT_EQ(level("[Error] "), Level::kError);
    EXPECT_EQ(level("[Info]  "), Level::kInfo);
    EXPECT_EQ(level("[Trace] "), Level::kTrace);
    EXPECT_EQ(level(""), Level::kNone);
}

TEST(LogLineTest, CountsMillisecondsAcrossMidnight) {
    const auto before = ParseLogLine("[2026-12-31 23:59:59.999] [TID: 1] [Info]  a");
    const auto after = ParseLogLine("[2027-01-01 00:00:00.001] [TID: 1] [Info]  b");
    EXPECT_EQ(after->time - before->time, 2);
}

TEST(LogLineTest, RefusesOtherText) {
    for (const char* text : {"", "[", "dmCopies = 1", "[2026-11-22 12:41:15.924] [TID: ] [Info]  x",
                             "[2026-13-22 12:41:15.924] [TID: 1] [Info]  x", "[2026-11-22 12:41:15.9",
                             "[2026-11-22 12:41:15.924] [TID: -1] [Info]  x",
                             "[2026-11-22 12:41:15.924] [TID: 99999999999] x"}) {
        EXPECT_FALSE(ParseLogLine(text)) << text;
    }
}

TEST(LogLineTest, ExplainsErrorsOfSoundJobs) {
    EXPECT_THAT(HarmlessReason("GetQRVProfileName [neutral.zvp] [x]"), testing::HasSubstr("catalogue"));
    EXPECT_THAT(HarmlessReason("Add A6 105 148 0"), testing::HasSubstr("label"));
    EXPECT_EQ(HarmlessReason("Could not find label list in registry: 0x5"), "");
    EXPECT_EQ(HarmlessReason("Error: could not start a job"), "");
}

}  // namespace
}  // namespace orvex::tools::trace
