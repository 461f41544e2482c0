// The log under module names that no test program has. The log's path is worked out once in a process, so
// each of these tests runs in a fresh one. In the Windows build the job's faults do so, in a driver that is
// loaded for each of them.
#ifndef _WIN32
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "driver/support/log.h"
#include "tests/driver/support/open_watch.h"

namespace orvex {

namespace {

using tools::ImportPatch;

constexpr DWORD kLongestName = 259;

DWORD WINAPI FindNoName(HMODULE, LPSTR, DWORD) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return 0;
}
DWORD WINAPI FindLongestName(HMODULE, LPSTR buffer, DWORD) {
    std::fill_n(buffer, kLongestName, 'n');
    memcpy(buffer, "\\", 1);
    memcpy(buffer + kLongestName - 4, ".dll", 5);
    return kLongestName;
}

// Ends the process with the length of the mutex's name, less 200, as its exit code.
HANDLE WINAPI ExitWithLength(SECURITY_ATTRIBUTES*, BOOL, LPCSTR name) {
    _exit(static_cast<int>(strlen(name)) - 200);
}

class LogPathDeathTest : public testing::Test {
  protected:
    LogPathDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

}  // namespace

TEST_F(LogPathDeathTest, WithoutAModuleNameTheMaskIsZeroAndNoFileIsOpened) {
    const auto load = [] {
        const ImportPatch name(nullptr, "GetModuleFileNameA", reinterpret_cast<void*>(&FindNoName));
        const OpenWatch watch;
        LoadLogMask();
        _exit(logMask == 0 && OpenWatch::openings.empty() ? 0 : 1);
    };
    EXPECT_EXIT(load(), testing::ExitedWithCode(0), "");
}

TEST_F(LogPathDeathTest, WithoutAModuleNameALineIsLostBeforeItTakesTheMutex) {
    const auto write = [] {
        const ImportPatch name(nullptr, "GetModuleFileNameA", reinterpret_cast<void*>(&FindNoName));
        const ImportPatch mutex(nullptr, "CreateMutexA", reinterpret_cast<void*>(&ExitWithLength));
        logMask = 1;
        LogError("error");
        _exit(0);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(0), "");
}

TEST_F(LogPathDeathTest, OfTheLongestNameIsCutForTheMutex) {
    const auto write = [] {
        const ImportPatch name(nullptr, "GetModuleFileNameA", reinterpret_cast<void*>(&FindLongestName));
        const ImportPatch mutex(nullptr, "CreateMutexA", reinterpret_cast<void*>(&ExitWithLength));
        logMask = 1;
        LogError("error");
        _exit(0);
    };
    EXPECT_EXIT(write(), testing::ExitedWithCode(59), "") << "259 characters and the terminator";
}

}  // namespace orvex
#endif
