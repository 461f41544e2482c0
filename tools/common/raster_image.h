// Pictures of pages, 32 bits a pixel.
#pragma once

#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>

#include "driver/support/heap.h"

namespace orvex::tools {

// The reason why a page can't be printed, in words.
class PageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Pixels per meter along each axis.
struct PixelDensity {
    double x = 0;
    double y = 0;
};

// A picture of pixels 0x00RRGGBB, in rows from the top without gaps.
struct RasterImage {
    uint32_t width = 0;
    uint32_t height = 0;
    HeapArray<uint32_t> pixels = nullptr;
    std::optional<PixelDensity> density = std::nullopt;  // empty if the file does not say

    const uint32_t* Row(uint32_t y) const { return pixels.get() + size_t{y} * width; }
    uint32_t* Row(uint32_t y) { return pixels.get() + size_t{y} * width; }
};

// Returns an image of white pixels. Throws std::bad_alloc.
inline RasterImage MakeImage(uint32_t width, uint32_t height) {
    const size_t pixels = size_t{width} * height;
    RasterImage image{.width = width, .height = height};
    image.pixels = AllocateArray<uint32_t>(std::max<size_t>(pixels, 1));
    if (!image.pixels) throw std::bad_alloc();
    std::fill_n(image.pixels.get(), pixels, 0xFFFFFFu);
    return image;
}

}  // namespace orvex::tools
