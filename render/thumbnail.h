// The preview of a job's first page: reduced, PNG-encoded, as base64 text.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/heap.h"

// How often a page of `width` x `height` pixels is halved: until the side that exceeds its limit by more no
// longer exceeds it. No halving when a limit is below 100.
int32_t ThumbnailScale(int32_t width, int32_t height, double maxWidth, double maxHeight);

// Reduces 32-bit pixels, lines of exactly `width` x 4 bytes, by the factor 2^scale: each output pixel is the
// truncated mean of its block, each of the first three bytes by itself, and opaque. `out` holds (width >>
// scale) x (height >> scale) pixels.
void ReducePixels(const uint32_t* pixels, int32_t width, int32_t height, int32_t scale, uint32_t* out);

// Makes the thumbnail of a page as zero-terminated base64 text of `length` characters, which the caller frees
// with free(); `text` stays null when none could be made. The limits come from settings.inf. 0 when the
// pixels could not be allocated, else 1.
int32_t BuildPageThumbnail(const uint32_t* pixels, int32_t width, int32_t height, char** text,
                           size_t* length);
