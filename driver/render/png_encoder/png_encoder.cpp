#include "driver/render/png_encoder/png_encoder.h"

#include <csetjmp>
#include <cstdlib>
#include <cstring>  // LodePNG includes it, too, and must not do so inside the namespace

// LodePNG has nothing in the driver but its encoder. Its decoder would only be weight, its file functions
// would import fopen, and the exceptions of those that take C++ containers would bring locks and memory of
// the C++ runtime, which outlive the driver's unloading. A program that has the driver in it may link the
// whole of LodePNG as well: in an unnamed namespace the two never mix.
#define LODEPNG_NO_COMPILE_DECODER
#define LODEPNG_NO_COMPILE_DISK
#define LODEPNG_NO_COMPILE_CPP
#define LODEPNG_NO_COMPILE_ALLOCATORS

namespace orvex {

namespace {

#include <lodepng.c>  // NOLINT(bugprone-suspicious-include)

// LodePNG's own error code for being out of memory.
constexpr unsigned kOutOfMemory = 83;

// LodePNG does not come through every allocation that fails, so none returns when it fails: the picture is
// given up on the spot, and all blocks that LodePNG holds are freed.
jmp_buf givenUp;
struct {
    void** blocks;
    size_t count, capacity;
} held = {};

void MakeRoom() {
    if (held.count < held.capacity) return;
    const size_t capacity = held.capacity == 0 ? 256 : 2 * held.capacity;
    void* larger = realloc(held.blocks, capacity * sizeof *held.blocks);
    if (larger == nullptr) longjmp(givenUp, 1);
    held.blocks = static_cast<void**>(larger);
    held.capacity = capacity;
}

// Returns the entry of a block, null for null. What was taken last is mostly given back first.
void** Find(void* memory) {
    for (size_t i = held.count; i-- > 0;) {
        if (held.blocks[i] == memory) return held.blocks + i;
    }
    return nullptr;
}

void ForgetBlocks() {
    free(held.blocks);
    held = {};
}

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): LodePNG's names are not ours
void* lodepng_malloc(size_t size) {
    MakeRoom();
    void* memory = malloc(size == 0 ? 1 : size);
    if (memory == nullptr) longjmp(givenUp, 1);
    return held.blocks[held.count++] = memory;
}

void* lodepng_realloc(void* memory, size_t size) {
    if (memory == nullptr) return lodepng_malloc(size);
    void** const entry = Find(memory);
    void* moved = realloc(memory, size == 0 ? 1 : size);
    if (moved == nullptr) longjmp(givenUp, 1);
    if (entry != nullptr) *entry = moved;
    return moved;
}

void lodepng_free(void* memory) {
    void** entry = Find(memory);
    if (entry != nullptr) *entry = held.blocks[--held.count];
    free(memory);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

}  // namespace

unsigned EncodeRgbaPng(uint8_t** png, size_t* size, const uint8_t* pixels, unsigned width, unsigned height) {
    if (setjmp(givenUp) != 0) {
        for (size_t i = 0; i < held.count; ++i) free(held.blocks[i]);
        ForgetBlocks();
        *png = nullptr;
        return kOutOfMemory;
    }
    const unsigned error = lodepng_encode_memory(png, size, pixels, width, height, LCT_RGBA, 8);
    ForgetBlocks();
    return error;
}

}  // namespace orvex
