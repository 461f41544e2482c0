// That nothing which can fail goes unwatched.

#include <algorithm>
#include <set>

#include "tests/faults/fault_fixture.h"
#ifndef _WIN32
#include "tests/doubles/double.h"
#endif

using testing::IsEmpty;

TEST_F(FaultTest, WatchesOnlyWhatTheDriverCalls) {
    for (const WatchedFunction& function : WatchedFunctions()) {
        EXPECT_TRUE(function.isEntryPoint || function.original != nullptr) << function.name;
    }
}

#ifndef _WIN32
// The driver can call nothing of the system for which there is no double.
TEST_F(FaultTest, WatchesEveryFunctionOfTheSystemThatCanFail) {
    std::set<std::string> known = {"GetLastError", "SetLastError", "GetTickCount", "GetSystemTime",
                                   "GetCurrentThreadId"};                              // can't fail
    known.insert({"malloc", "calloc", "realloc", "free", "LocalAlloc", "LocalFree"});  // the heap
    for (const WatchedFunction& function : WatchedFunctions()) known.insert(function.name);
    std::vector<std::string> unwatched = doubles::SlotNames();
    std::erase_if(unwatched, [&](const std::string& name) { return known.contains(name); });
    EXPECT_THAT(unwatched, IsEmpty());
}
#endif
