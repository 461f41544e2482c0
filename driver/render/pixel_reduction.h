// The thumbnail's pixels: a page made smaller by a power of two.
#pragma once

#include <cstdint>

namespace orvex {

// Returns how often a page of `width` x `height` pixels is halved: until the side that exceeds its limit by
// more no longer exceeds it. Returns 0 when a limit is below 100.
int32_t ThumbnailScale(int32_t width, int32_t height, double maxWidth, double maxHeight);

// Reduces 32-bit pixels, lines of exactly `width` x 4 bytes, to (width >> scale) x (height >> scale) ones:
// each is the truncated mean of its block, each of the first three bytes by itself, and opaque.
void ReducePixels(const uint32_t* pixels, int32_t width, int32_t height, int32_t scale, uint32_t* out);

}  // namespace orvex
