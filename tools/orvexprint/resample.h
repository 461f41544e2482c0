// Pictures of another size.
#pragma once

#include <cstdint>

#include "tools/common/picture.h"

namespace orvex::tools::print {

// The way to enlarge an axis: repeat the nearest pixel, which keeps the edges of text and bars sharp, or
// blend the two neighbors. A reduced axis always takes the average of the area that each pixel covers.
enum class Enlarging { kNearest, kBlend };

// Returns the picture with `width` x `height` pixels, neither 0. An axis of the same size stays unchanged.
RasterImage Resample(const RasterImage& image, uint32_t width, uint32_t height, Enlarging enlarging);

}  // namespace orvex::tools::print
