#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "fuzz/dictionaries.h"
#include "fuzz/target.h"

namespace orvex::fuzz {

namespace {

#define FUZZ_TARGET_ROW(name, function) {#name, &Fuzz##function, &function##Seeds, DictionaryOf(#name)},
const FuzzTarget kTargets[] = {FUZZ_TARGETS(FUZZ_TARGET_ROW)};
#undef FUZZ_TARGET_ROW

}  // namespace

std::span<const FuzzTarget> FuzzTargets() {
    return kTargets;
}

const FuzzTarget* FindFuzzTarget(std::string_view name) {
    for (const FuzzTarget& target : kTargets) {
        if (target.name == name) return &target;
    }
    return nullptr;
}

void InvariantBroken(const char* condition, const char* file, int line) {
    fprintf(stderr, "%s:%d: invariant broken: %s\n", file, line, condition);
    fflush(stderr);
    abort();
}

}  // namespace orvex::fuzz
