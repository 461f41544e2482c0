// Encodes pictures as PNG files.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvex {

// Encodes pixels of 4 bytes, red first and alpha last. Returns 0 and the file's bytes, which are freed with
// free(), or LodePNG's error code. One picture is encoded at a time in a process.
unsigned EncodeRgbaPng(uint8_t** png, size_t* size, const uint8_t* pixels, unsigned width, unsigned height);

}  // namespace orvex
