// The memory that LodePNG works in. LodePNG does not come through every allocation that fails, so none
// returns when it fails: the work is given up on the spot and all that it took is freed.
#pragma once

#include <cstddef>

namespace orvex {

// Calls `work`, which does nothing but call LodePNG: it is left without any clean-up of its own. What it
// keeps is freed with free(). False when out of memory. One such work runs at a time in a process.
bool WithPngMemory(void (*work)(void* context), void* context);

// LodePNG's allocations, which it makes inside WithPngMemory() only.
void* PngMalloc(size_t size);
void* PngRealloc(void* memory, size_t size);
void PngFree(void* memory);

}  // namespace orvex
