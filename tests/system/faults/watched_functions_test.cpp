// That nothing which can fail goes unwatched.

#include <algorithm>
#include <cstdio>
#include <set>

#include "tests/system/faults/fault_fixture.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::IsEmpty;

namespace {

// Functions that the driver imports and that are not watched, by the reason.
const std::vector<std::set<std::string>> kUnwatched = {
    // can't fail
    {"GetCurrentThreadId", "GetLastError", "GetSystemTime", "GetTickCount", "SetLastError"},
    // the heap, whose allocations fail all the same: a DebugHeap stands in their place
    {"LocalAlloc", "LocalFree", "calloc", "free", "malloc", "realloc"},
#ifdef _WIN32
    // plain work on texts and memory
    {"atof", "islower", "isspace", "isupper", "memchr", "memcmp", "memcpy", "memmove", "memset", "strchr",
     "strcspn", "strlen", "strncmp", "strrchr", "strtol", "wcslen"},
    // what the C runtime formats numbers and texts with: it looks up the locale, and locks what has no
    // failure
    {"IsDBCSLeadByteEx", "___lc_codepage_func", "___mb_cur_max_func", "_errno", "_lock", "_unlock",
     "localeconv", "strerror"},
    // the C and C++ runtimes while the driver is loaded and unloaded, and on their way to end the process
    {"DeleteCriticalSection", "EnterCriticalSection", "InitializeCriticalSection", "LeaveCriticalSection",
     "Sleep", "TlsGetValue", "VirtualProtect", "VirtualQuery", "__iob_func", "__setusermatherr", "_amsg_exit",
     "_initterm", "_setjmp", "abort", "fputc", "longjmp", "vfprintf"},
    // files that the encoder of thumbnails could read and write; none is ever opened, as is tested below
    {"fclose", "fopen", "fread", "fseek", "ftell", "fwrite"},
#endif
};

#ifdef _WIN32
int opened = 0;

FILE* CountOpened(const char*, const char*) {
    ++opened;
    return nullptr;
}
#endif

}  // namespace

TEST_F(FaultTest, WatchesOnlyWhatTheDriverCalls) {
    for (const WatchedFunction& function : WatchedFunctions()) {
        EXPECT_TRUE(function.isEntryPoint || function.original != nullptr) << function.name;
    }
}

TEST_F(FaultTest, WatchesEveryImportThatCanFail) {
    std::set<std::string> known;
    for (const WatchedFunction& function : WatchedFunctions()) {
        if (!function.isEntryPoint) known.insert(function.name);
    }
    for (const std::set<std::string>& group : kUnwatched) {
        for (const std::string& name : group) EXPECT_TRUE(known.insert(name).second) << name << " twice";
    }
    const std::vector<std::string> imported = ImportedFunctions(Session().Driver().Module());
    std::vector<std::string> difference;
    std::set_symmetric_difference(imported.begin(), imported.end(), known.begin(), known.end(),
                                  std::back_inserter(difference));
    EXPECT_THAT(difference, IsEmpty());
}

#ifdef _WIN32
TEST_F(FaultTest, OpensNoFileOfTheCRuntime) {
    const ImportPatch open(Session().Driver().Module(), "fopen", reinterpret_cast<void*>(&CountOpened));
    ASSERT_NE(open.Original(), nullptr);
    EXPECT_THAT(Run().Refusals(), IsEmpty());
    EXPECT_EQ(opened, 0);
}
#endif

}  // namespace orvex
