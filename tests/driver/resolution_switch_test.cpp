// The resolution command of a page, which the driver patches in the print engine's output.

#include "tests/driver/job_output_fixture.h"
#include "tests/driver/profiles/profile_bytes.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ResolutionSwitching = JobOutputTest;

TEST_F(ResolutionSwitching, PatchesTheCommandOnce) {
    mask = 3;
    Begin();
    Written(kComment);
    std::string seen;
    LogLines();
    SendPage([&] {
        seen = Written("head \x1B*o-1M tail");
        EXPECT_EQ(writes, 3);
        EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o-1M");
    });
    EXPECT_EQ(seen, "head \x1B*o3M tail");
    EXPECT_THAT(LogLines(), Contains("[Trace] hpres found *o-1"));
}

TEST_F(ResolutionSwitching, PatchesTheShorterCommandAt600Dpi) {
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    Begin(mode);
    Written(kComment);
    SendPage([&] { EXPECT_EQ(Written("\x1B*o0M\x1B*o0M"), "\x1B*o6M\x1B*o0M"); });
}

TEST_F(ResolutionSwitching, WaitsForACommandThatIsNotSplitBetweenChunks) {
    Begin();
    Written(kComment);
    SendPage([&] {
        EXPECT_EQ(Written("x\x1B*o-1"), "x\x1B*o-1");
        EXPECT_EQ(Written("M"), "M");
        EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o3M");
    });
}

TEST_F(ResolutionSwitching, FailsWhenAPieceOfThePatchIsLost) {
    for (const int nth : {1, 2, 3}) {
        Begin();
        Written(kComment);
        SendPage([&] {
            PrintSpooler().FailCall("WritePrinter", nth, ERROR_DISK_FULL);
            Written("head \x1B*o-1M tail", 0);
            EXPECT_EQ(writes, nth);
        });
        Session().EndDoc(Current());
    }
}

TEST_F(ResolutionSwitching, PatchesTheFirstPageWhenTheProfileSetTheCode) {
    Begin();
    SendPage([&] { EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o3M"); });
}

TEST_F(ResolutionSwitching, SettlesTheCodeOnTheFirstPageWhenTheProfileSetNone) {
    mask = 3;
    struct Case {
        int16_t dpi;
        const char* command;
        const char* code;
    };
    for (const Case& item : {Case{300, "\x1B*o-1M", "HPRES=-1\n"}, {600, "\x1B*o0M", "HPRES=0\n"}}) {
        installation.Write(std::string("profiles/") + kProfile,
                           ProfileBytes(5, TagArea(NameTag("Test colours")), GridColors(&ProfileColor)));
        DeviceMode mode = Mode();
        mode.pub.dmPrintQuality = item.dpi;
        Begin(mode);
        LogLines();
        SendPage([&] {
            EXPECT_EQ(Written(item.command), item.command);
            EXPECT_THAT(Written(kComment), HasSubstr(item.code));
        });
        EXPECT_THAT(LogLines(), Not(Contains(StartsWith("[Trace] hpres found"))));
        ASSERT_TRUE(Session().StartPage(Current()));
        LogLines();
        // The page patches the code into a command that has it already.
        SendPage([&] { EXPECT_EQ(Written(item.command), item.command); });
        EXPECT_THAT(LogLines(), Contains(StartsWith("[Trace] hpres found *o")));
        Session().EndDoc(Current());
    }
}

TEST_F(ResolutionSwitching, EndsWithThePageAndReportsTheMiss) {
    Begin();
    ASSERT_TRUE(Session().SendPage(Current()));  // nothing patches its switch
    ASSERT_TRUE(Session().StartPage(Current()));
    EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o-1M");
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_THAT(LogLines(), Contains("[Error] Error: page 2 res missed!!!!!!!!!!!!!!!!!!!"));
}

TEST_F(ResolutionSwitching, ReportsNoMissAfterAPatch) {
    Begin();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_EQ(Written("\x1B*o-1M"), "\x1B*o3M");
    ASSERT_TRUE(Session().StartPage(Current()));
    LogLines();
    ASSERT_TRUE(Session().SendPage(Current()));
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("res missed"))));
}

}  // namespace orvex
