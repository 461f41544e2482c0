#include "fuzz/allocation_watch.h"

#include <algorithm>
#include <cstdint>

#include "fuzz/target.h"

namespace orvex::fuzz {

namespace {

struct Block {
    const void* memory;
    size_t bytes;
};

// The books need no memory of their own: they are written while some is taken.
constexpr size_t kMostBlocks = 16;
Block blocks[kMostBlocks];
size_t live = 0;
size_t allocations = 0;
bool watching = false;

void* Note(void* memory, size_t bytes) {
    if (!watching || memory == nullptr) return memory;
    REQUIRE(live < kMostBlocks);
    blocks[live++] = {memory, bytes};
    ++allocations;
    return memory;
}

void Forget(const void* memory) {
    Block* const end = blocks + live;
    Block* const block =
        std::find_if(blocks, end, [memory](const Block& each) { return each.memory == memory; });
    if (block != end) *block = blocks[--live];
}

}  // namespace

// The linker's --wrap sends every call of malloc, calloc and free here, under names of its own choice.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t size);
void __real_free(void* memory);
void* __wrap_malloc(size_t bytes) {
    return Note(__real_malloc(bytes), bytes);
}
void* __wrap_calloc(size_t count, size_t size) {
    return Note(__real_calloc(count, size), count * size);
}
void __wrap_free(void* memory) {
    if (live > 0) Forget(memory);
    __real_free(memory);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

AllocationWatch::AllocationWatch() {
    live = allocations = 0;
    watching = true;
}

AllocationWatch::~AllocationWatch() {
    watching = false;
    live = 0;
}

size_t AllocationWatch::Taken() {
    return allocations;
}

std::vector<size_t> AllocationWatch::Live() {
    const AllocationWatchPause pause;
    std::vector<size_t> sizes;
    for (size_t i = 0; i < live; ++i) sizes.push_back(blocks[i].bytes);
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

AllocationWatchPause::AllocationWatchPause() : before_(watching) {
    watching = false;
}

AllocationWatchPause::~AllocationWatchPause() {
    watching = before_;
}

}  // namespace orvex::fuzz
