// The preview of a job's first page: reduced, PNG-encoded, as base64 text.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvex {

// Makes the thumbnail of a page as zero-terminated base64 text of `length` characters, which the caller frees
// with free(); leaves `text` null when none can be made. The limits come from settings.inf. Returns 0 when
// the pixels could not be allocated, else 1.
int32_t BuildPageThumbnail(const uint32_t* pixels, int32_t width, int32_t height, char** text,
                           size_t* length);

}  // namespace orvex
