// Encodes pictures as PNG files, within memory that the caller provides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvex {

// LodePNG's own error code for being out of memory.
constexpr unsigned kPngOutOfMemory = 83;

struct EncodedPng {
    unsigned error = 0;              // LodePNG's error code
    std::span<const uint8_t> bytes;  // the file, within the workspace; empty after an error
};

// Returns how many bytes the encoder needs for a picture of this size, whatever its pixels.
size_t PngWorkspaceSize(unsigned width, unsigned height);

// Encodes pixels of 4 bytes, red first and alpha last. The workspace is aligned as malloc() aligns memory,
// and has PngWorkspaceSize() bytes or none: LodePNG reports that it is out of memory then, but does not come
// through every later allocation that fails. One picture is encoded at a time in a process.
EncodedPng EncodeRgbaPng(std::span<uint8_t> workspace, const uint8_t* pixels, unsigned width,
                         unsigned height);

}  // namespace orvex
