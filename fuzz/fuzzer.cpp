// libFuzzer's entry point. ORVEX_FUZZ_TARGET names the target, since libFuzzer takes all arguments as its
// own.

#include <cstdio>
#include <cstdlib>

#include "fuzz/target.h"

using namespace orvex::fuzz;

static const FuzzTarget* chosen = nullptr;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* name = getenv("ORVEX_FUZZ_TARGET");
    chosen = FindFuzzTarget(name != nullptr ? name : "");
    if (chosen != nullptr) return 0;
    fprintf(stderr, "fuzzer: set ORVEX_FUZZ_TARGET to one of:");
    for (const FuzzTarget& target : FuzzTargets()) fprintf(stderr, " %s", target.name);
    fprintf(stderr, "\n");
    exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    chosen->run({data, size});
    return 0;
}
