#include "tools/common/raster_image.h"

#include <algorithm>
#include <new>

namespace orvex::tools {

RasterImage MakeImage(uint32_t width, uint32_t height) {
    const size_t pixels = size_t{width} * height;
    RasterImage image{
        .width = width, .height = height, .pixels = AllocateArray<uint32_t>(std::max<size_t>(pixels, 1))};
    if (!image.pixels) throw std::bad_alloc();
    std::fill_n(image.pixels.get(), pixels, 0xFFFFFFu);
    return image;
}

}  // namespace orvex::tools
