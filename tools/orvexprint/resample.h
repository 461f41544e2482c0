// Changing the size of a picture.
#pragma once

#include <cstdint>

#include "tools/common/raster_image.h"

namespace orvex::tools::print {

// What pixels between those of the picture become where it is enlarged: the nearest one, which keeps edges of
// text and bars sharp, or a blend of its neighbours. An axis that is reduced takes the average of the area
// each pixel covers.
enum class Enlarging { kNearest, kBlend };

// The picture with `width` x `height` pixels, neither 0. Rows of the same size come out unchanged.
RasterImage Resample(const RasterImage& image, uint32_t width, uint32_t height, Enlarging enlarging);

}  // namespace orvex::tools::print
