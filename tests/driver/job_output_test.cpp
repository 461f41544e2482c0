#include "driver/job_output.h"

#include "driver/job_state.h"
#include "tests/driver/job_output_fixture.h"
#include "tests/driver/profiles/profile_bytes.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using JobOutput = JobOutputTest;

TEST_F(JobOutput, RefusesMissingArguments) {
    Begin();
    EXPECT_EQ(engine.output(nullptr, 1, engine.context), 0);
    const uint8_t data = 'x';
    EXPECT_EQ(engine.output(&data, 1, nullptr), 0);
    PDEV* none = nullptr;
    EXPECT_EQ(engine.output(&data, 1, &none), 0);
    EXPECT_THAT(Printer().written, IsEmpty());
}

TEST_F(JobOutput, DropsFramingChunksAtTheStart) {
    Begin();
    // 0x40 + 0x20 + 0x20 and 0x20 + 0x20 + 0x40 are 256 together.
    EXPECT_EQ(Written("\x40\x20\x20_\x20\x20\x40"), "");
    EXPECT_EQ(Written(std::string_view("\x00\x00\x00_\x00\x00\x00", 7)), "");
    EXPECT_EQ(Written("ab"), "ab");
    EXPECT_EQ(Written("\x40\x20\x20_\x20\x20\x40"), "\x40\x20\x20_\x20\x20\x40");  // no longer the first
}

TEST_F(JobOutput, KeepsAFirstChunkOfSixBytesOrOfAnotherSum) {
    for (const char* chunk : {"\x40\x20\x20\x20\x20\x40", "\x40\x20\x20_\x20\x20\x41"}) {
        Begin();
        EXPECT_EQ(Written(chunk), chunk);
        Session().EndDoc(Current());
    }
}

TEST_F(JobOutput, FailsWhenTheRestOfTheChunkIsLost) {
    Begin();
    Written("first");
    PrintSpooler().FailCall("WritePrinter", 1, ERROR_DISK_FULL);
    Written("second", 0);
    EXPECT_EQ(Written("third"), "third");
}

TEST_F(JobOutput, WritesNothingForAnEmptyChunk) {
    Begin();
    EXPECT_EQ(Written(""), "");
    EXPECT_EQ(writes, 0);
}

namespace {

DWORD tick = 0;
DWORD tickStep = 0;

}  // namespace

TEST_F(JobOutput, LogsTheCostOfItsSlowestWrite) {
    Begin();
#ifndef _WIN32
    g_uMaxWriteCost = 0;  // natively the driver is loaded once for all tests
#endif
    const ImportPatch clock(Session().Driver().Module(), "GetTickCount",
                            reinterpret_cast<void*>(+[]() WINAPI -> DWORD { return tick += tickStep; }));
    LogLines();
    tickStep = 1;
    Written(std::string(1000, 'x'));  // the lowest cost that is logged
    EXPECT_THAT(LogLines(), Contains("[Info]  write: 1us/B"));
    tickStep = 4'000'000;
    Written(std::string(980, 'x') + kComment);  // the cost is per byte of the whole chunk
    EXPECT_THAT(LogLines(), Contains("[Info]  write: 4000000us/B"));
    Written(std::string(1000, 'x'));  // as slow, but no slower
    EXPECT_THAT(LogLines(), IsEmpty());
    Written(std::string(1001, 'x'));
    EXPECT_THAT(LogLines(), IsEmpty());
    tickStep = 4'294'968;  // its microseconds wrap around to 704
    Written("x");
    EXPECT_THAT(LogLines(), IsEmpty());
    tickStep = 4'005'000;
    Written(std::string(1000, 'x'));
    EXPECT_THAT(LogLines(), ElementsAre("[Info]  write: 4005000us/B"));
}

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
