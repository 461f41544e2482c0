#include "driver/render/png_encoder/png_encoder.h"

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

// LodePNG's own error code for a picture whose size it can't calculate with.
constexpr unsigned kTooManyPixels = 92;

// A block of the workspace; its bytes follow. All blocks up to the last one lie one after the other.
struct alignas(16) Block {
    Block* before;  // null before the first one
    size_t size;
    bool used;
};

// The workspace of the picture that is being encoded: LodePNG's allocation functions have no parameter for
// it.
struct {
    uint8_t* free;  // the end of the last block
    uint8_t* end;
    Block* last;
} heap;

void DropLastBlock() {
    heap.free = reinterpret_cast<uint8_t*>(heap.last);
    heap.last = heap.last->before;
}

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): LodePNG's names are not ours
void* lodepng_malloc(size_t size) {
    const size_t taken = sizeof(Block) * (2 + size / sizeof(Block));  // itself, and at least the bytes
    if (taken > static_cast<size_t>(heap.end - heap.free)) return nullptr;
    Block* const block = reinterpret_cast<Block*>(heap.free);
    *block = {heap.last, size, true};
    heap.last = block;
    heap.free += taken;
    return block + 1;
}

void lodepng_free(void* memory) {
    if (memory == nullptr) return;
    (static_cast<Block*>(memory) - 1)->used = false;
    while (heap.last != nullptr && !heap.last->used) DropLastBlock();
}

void* lodepng_realloc(void* memory, size_t size) {
    if (memory == nullptr) return lodepng_malloc(size);
    Block* const block = static_cast<Block*>(memory) - 1;
    if (block == heap.last) {  // grows where it is: the longest lists do so, byte by byte
        DropLastBlock();
        return lodepng_malloc(size);
    }
    void* const moved = lodepng_malloc(size);
    if (moved != nullptr) memcpy(moved, memory, block->size);
    lodepng_free(memory);
    return moved;
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

// Returns the size of the picture's bytes before compression, at most: a filter byte and 4 bytes for each
// pixel of a line.
uint64_t FilteredSize(unsigned width, unsigned height) {
    return height * (1 + uint64_t{4} * width);
}

// Returns the size of deflated bytes, at most. Optimal codes are never longer than codes of equal lengths.
// These have 9 bits for a byte, and no more for each byte of a match: 9 + 5 bits, and 13 for the distance and
// length of a match of 3 to 10 bytes, 18 for those of a longer one. The rest is for the codes of each block
// of 64 KiB or more: less than 600 bytes.
size_t DeflatedSize(size_t size) {
    return size + size / 7 + 1024;
}

// Deflates as LodePNG does, but into memory that never grows. Grown bit by bit between blocks that come and
// go, it would leave a hole wherever it moved on from.
unsigned Deflate(unsigned char** out, size_t* outSize, const unsigned char* bytes, size_t size,
                 const LodePNGCompressSettings* settings) {
    const size_t capacity = DeflatedSize(size);
    ucvector deflated = {static_cast<unsigned char*>(lodepng_malloc(capacity)), 0, capacity};
    const unsigned error = lodepng_deflatev(&deflated, bytes, size, settings);
    *out = deflated.data;
    *outSize = deflated.size;
    return error;
}

}  // namespace

// LodePNG holds, at its worst: the pixels without alpha, and these filtered; the deflated bytes, their copy
// with a checksum and that in the file; five lines while it chooses a filter. Besides these, less than 3 MiB:
// 2 MiB for the symbols of a deflated block, which are 4 bytes for each byte and a third more for short
// matches, in a list half as large again; hash chains and code tables; or, before all that, a tree of 257
// colors.
size_t PngWorkspaceSize(unsigned width, unsigned height) {
    const size_t filtered = FilteredSize(width, height);
    return filtered + 3 * DeflatedSize(filtered) + size_t{20} * width + (size_t{3} << 20);
}

EncodedPng EncodeRgbaPng(std::span<uint8_t> workspace, const uint8_t* pixels, unsigned width,
                         unsigned height) {
    if (FilteredSize(width, height) > UINT32_MAX) return {.error = kTooManyPixels, .bytes = {}};
    heap = {workspace.data(), workspace.data() + workspace.size(), nullptr};
    LodePNGState state;
    lodepng_state_init(&state);
    state.encoder.zlibsettings.custom_deflate = Deflate;
    unsigned char* png = nullptr;
    size_t size = 0;
    const unsigned error = lodepng_encode(&png, &size, pixels, width, height, &state);
    if (error != 0) return {.error = error, .bytes = {}};
    return {.error = 0, .bytes = {png, size}};
}

}  // namespace orvex
