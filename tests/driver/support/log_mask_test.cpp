#include <gmock/gmock.h>

#include <filesystem>

#include "driver/support/log.h"
#include "tests/driver/support/log_files.h"
#include "tests/driver/support/open_watch.h"

namespace orvex {

using namespace tools;

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

const uint32_t maskAtStart = logMask;

// Expects LoadLogMask to set this mask when the control file holds this text.
void ExpectMask(const char* text, uint32_t mask) {
    const LogCapture log(0);
    WriteBytes(LogControlFile(), text);
    LoadLogMask();
    EXPECT_EQ(logMask, mask) << text;
}

}  // namespace

TEST(LogMask, ComesFromTheControlFileAsADecimalNumber) {
    ExpectMask("3", 3);
    ExpectMask("2", 2);
    ExpectMask("1", 1);
    ExpectMask("0", 0);
    ExpectMask(" 3\r\n", 3);
    ExpectMask("+3", 3);
    ExpectMask("1x", 1);
    ExpectMask("0x3", 0);
}

TEST(LogMask, IsZeroWithoutANumber) {
    for (const char* text : {"", " ", "abc", "+", "-", "+-3", "- 3"}) ExpectMask(text, 0);
}

TEST(LogMask, IsTheLow32BitsOfTheNumber) {
    ExpectMask("2147483647", 0x7FFFFFFF);
    ExpectMask("2147483648", 0x80000000);
    ExpectMask("4294967294", 0xFFFFFFFE);
    ExpectMask("4294967295", 0xFFFFFFFF);
    ExpectMask("4294967296", 0);
    ExpectMask("4294967299", 3);
    ExpectMask("-1", 0xFFFFFFFF);
    ExpectMask("-2", 0xFFFFFFFE);
    ExpectMask("-2147483648", 0x80000000);
    ExpectMask("-4294967295", 1);
    ExpectMask("18446744073709551613", 0xFFFFFFFD);
}

TEST(LogMask, HasEveryBitForANumberPast64Bits) {
    ExpectMask("18446744073709551616", 0xFFFFFFFF);
    ExpectMask("-18446744073709551616", 0xFFFFFFFF);
    ExpectMask("99999999999999999999999999", 0xFFFFFFFF);
}

TEST(LogMask, IsZeroBeforeAnyControlFileIsRead) {
    EXPECT_EQ(maskAtStart, 0u);
}

TEST(LogMask, IsReadFromTheFirst63BytesOfAFileThatOthersMayWrite) {
    const LogCapture log(0);
    WriteBytes(LogControlFile(), std::string(62, '0') + "39");
    const OpenWatch watch;
    LoadLogMask();
    EXPECT_EQ(logMask, 3u);
    ASSERT_EQ(OpenWatch::openings.size(), 1u);
    EXPECT_EQ(OpenWatch::openings[0].access, DWORD{GENERIC_READ});
    EXPECT_EQ(OpenWatch::openings[0].share, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE});
}

TEST(LogMask, IsZeroWhenTheControlFileCannotBeRead) {
    const LogCapture log(3);
    const ImportPatch failure(nullptr, "ReadFile",
                              reinterpret_cast<void*>(+[](HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED)
                                                           WINAPI -> BOOL { return FALSE; }));
    LoadLogMask();
    EXPECT_EQ(logMask, 0u);
}

TEST(LogMask, IsZeroWithoutAControlFileAndNoLogIsEverMade) {
    const LogCapture log(3);
    fs::remove(LogControlFile());
    LoadLogMask();
    EXPECT_EQ(logMask, 0u);
    LogError("error");
    LogInfo("info");
    LogTrace("trace");
    EXPECT_FALSE(fs::exists(LogFile()));
}

namespace {

// The mask at the time of the last read.
uint32_t maskInForce = 0;
void* readFile = nullptr;
BOOL WINAPI NoteMaskAndRead(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped) {
    maskInForce = logMask;
    return reinterpret_cast<decltype(&ReadFile)>(readFile)(file, buffer, size, read, overlapped);
}

}  // namespace

TEST(LogMask, StaysInForceWhileItIsReadAnew) {
    const LogCapture log(3);
    WriteBytes(LogControlFile(), "1");
    const ImportPatch patch(nullptr, "ReadFile", reinterpret_cast<void*>(&NoteMaskAndRead));
    readFile = patch.Original();
    LoadLogMask();
    EXPECT_EQ(maskInForce, 3u) << "a thread that logs meanwhile loses no line";
    EXPECT_EQ(logMask, 1u);
}

TEST(LogMask, BitZeroShowsErrorsAndInformationOnly) {
    LogCapture log(1);
    LogError("error");
    LogInfo("info");
    LogTrace("trace");
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Error] error", "[Info]  info"));
}

TEST(LogMask, BitOneShowsTheTraceOnly) {
    LogCapture log(2);
    LogError("error");
    LogInfo("info");
    LogTrace("trace");
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Trace] trace"));
}

}  // namespace orvex
