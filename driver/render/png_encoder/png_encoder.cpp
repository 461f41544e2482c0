#include "driver/render/png_encoder/png_encoder.h"

#include <cstring>  // LodePNG includes it, too, and must not do so inside the namespace

#include "driver/render/png_encoder/png_memory.h"

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

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): LodePNG's names are not ours
void* lodepng_malloc(size_t size) {
    return PngMalloc(size);
}

void* lodepng_realloc(void* memory, size_t size) {
    return PngRealloc(memory, size);
}

void lodepng_free(void* memory) {
    PngFree(memory);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

}  // namespace

unsigned EncodeRgbaPng(uint8_t** png, size_t* size, const uint8_t* pixels, unsigned width, unsigned height) {
    return lodepng_encode_memory(png, size, pixels, width, height, LCT_RGBA, 8);
}

}  // namespace orvex
