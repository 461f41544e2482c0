// Checks that no call that can fail goes unwatched.

#include <algorithm>
#include <set>

#include "tests/system/faults/fault_fixture.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::IsEmpty;

namespace {

// Functions that the driver imports and that are not watched, grouped by the reason.
const std::vector<std::set<std::string>> kUnwatched = {
    // functions that can't fail
    {"GetCurrentThreadId", "GetLastError", "GetSystemTime", "GetTickCount", "SetLastError"},
    // the heap: a HeapWatch makes its allocations fail
    {"LocalAlloc", "LocalFree", "calloc", "free", "malloc", "realloc"},
#ifdef _WIN32
    // functions on texts and memory
    {"atof", "islower", "isspace", "isupper", "memchr", "memcmp", "memcpy", "memmove", "memset", "strchr",
     "strcspn", "strlen", "strrchr", "strtol", "wcslen"},
    // number formatting in the C runtime: locale look-ups and locks that can't fail
    {"IsDBCSLeadByteEx", "___lc_codepage_func", "___mb_cur_max_func", "_errno", "_lock", "_unlock",
     "localeconv", "strerror"},
    // the C and C++ runtimes while the driver is loaded and unloaded, and when they end the process
    {"DeleteCriticalSection", "EnterCriticalSection", "InitializeCriticalSection", "LeaveCriticalSection",
     "Sleep", "TlsGetValue", "__setusermatherr", "_amsg_exit", "_initterm", "fputc"},
#endif
};

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
TEST_F(FaultTest, TheDriverImportsSystemLibrariesAlone) {
    EXPECT_THAT(ImportedLibraries(Session().Driver().Module()),
                testing::ElementsAre("GDI32.dll", "KERNEL32.dll", "SHELL32.dll", "SHLWAPI.dll",
                                     "WINSPOOL.DRV", "msvcrt.dll"));
}

TEST_F(FaultTest, TheDriverImportsNoFilesOfTheCRuntime) {
    const std::vector<std::string> imported = ImportedFunctions(Session().Driver().Module());
    for (const char* function : {"fopen", "_wfopen", "freopen", "fread", "fwrite", "fclose"}) {
        EXPECT_THAT(imported, testing::Not(testing::Contains(function)));
    }
}
#endif

}  // namespace orvex
