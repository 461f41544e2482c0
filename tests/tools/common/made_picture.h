// Pictures of given samples, and the pixels of pictures.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/common/picture.h"

namespace orvex::tools {

using Samples = std::vector<uint8_t>;

inline Picture MakePicture(uint32_t width, uint32_t height, uint32_t channels, const Samples& samples) {
    Picture picture(width, height, channels);
    picture.samples = samples;
    return picture;
}

inline std::vector<uint32_t> PixelsOf(const RasterImage& image) {
    return {image.pixels.get(), image.pixels.get() + size_t{image.width} * image.height};
}

}  // namespace orvex::tools
