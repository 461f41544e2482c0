// The preview of a job's first page: reduced, PNG-encoded, as base64 text.
#pragma once

#include <cstddef>
#include <cstdint>

#include "driver/support/heap.h"

namespace orvex {

// How often a page of `width` x `height` pixels is halved: until the side that exceeds its limit by more no
// longer exceeds it. No halving when a limit is below 100.
int32_t ThumbnailScale(int32_t width, int32_t height, double maxWidth, double maxHeight);

// Makes the thumbnail of a page as zero-terminated base64 text of `length` characters, which the caller frees
// with free(); `text` stays null when none could be made. The limits come from settings.inf. 0 when the
// pixels could not be allocated, else 1.
int32_t BuildPageThumbnail(const uint32_t* pixels, int32_t width, int32_t height, char** text,
                           size_t* length);

}  // namespace orvex
