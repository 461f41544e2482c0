#include "driver/render/png_encoder/png_memory.h"

#include <csetjmp>
#include <cstdlib>

namespace orvex {

namespace {

jmp_buf givenUp;

// The blocks that the work holds.
struct BlockList {
    void** blocks;
    size_t count;
    size_t capacity;
};
BlockList held = {};

// Makes room for one more block.
void Reserve() {
    if (held.count < held.capacity) return;
    const size_t capacity = held.capacity == 0 ? 256 : 2 * held.capacity;
    void* larger = realloc(held.blocks, capacity * sizeof *held.blocks);
    if (larger == nullptr) longjmp(givenUp, 1);
    held.blocks = static_cast<void**>(larger);
    held.capacity = capacity;
}

// What was taken last is mostly given back first.
void** Find(void* memory) {
    for (size_t i = held.count; i-- > 0;) {
        if (held.blocks[i] == memory) return held.blocks + i;
    }
    return nullptr;
}

void* Hold(void* memory) {
    if (memory == nullptr) longjmp(givenUp, 1);
    held.blocks[held.count++] = memory;
    return memory;
}

void Forget(void* memory) {
    void** entry = Find(memory);
    if (entry != nullptr) *entry = held.blocks[--held.count];
}

void EndWork() {
    free(held.blocks);
    held = {};
}

}  // namespace

void* PngMalloc(size_t size) {
    Reserve();
    return Hold(malloc(size == 0 ? 1 : size));
}

void* PngRealloc(void* memory, size_t size) {
    if (memory == nullptr) return PngMalloc(size);
    void** const entry = Find(memory);
    void* moved = realloc(memory, size == 0 ? 1 : size);
    if (moved == nullptr) longjmp(givenUp, 1);
    if (entry != nullptr) *entry = moved;
    return moved;
}

void PngFree(void* memory) {
    Forget(memory);
    free(memory);
}

bool WithPngMemory(void (*work)(void* context), void* context) {
    if (setjmp(givenUp) != 0) {
        for (size_t i = 0; i < held.count; ++i) free(held.blocks[i]);
        EndWork();
        return false;
    }
    work(context);
    EndWork();
    return true;
}

}  // namespace orvex
