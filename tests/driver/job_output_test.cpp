#include "driver/job_output.h"

#include "driver/job_state.h"
#include "tests/driver/job_output_fixture.h"

namespace orvex {

using namespace tools;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

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

}  // namespace orvex
