// How far a preview is from the picture that was to be printed.
#pragma once

#include <cstdint>
#include <string>

#include "tools/common/raster_image.h"
#include "tools/orvexview/picture.h"

namespace orvex::tools::view {

struct Comparison {
    // Per channel red, green, blue, in steps of 1/255.
    uint32_t largest[3] = {};
    double mean[3] = {};
    // The pixel of the largest difference in any channel; meaningless when there is none.
    uint32_t worstX = 0;
    uint32_t worstY = 0;
    uint64_t pixels = 0;
    uint64_t different = 0;  // pixels that differ in any channel
};

// Compares a picture of 3 channels with an image of the same size. Throws std::runtime_error when the sizes
// differ.
Comparison Compare(const Picture& picture, const RasterImage& image);

// The result in words, some lines.
std::string DescribeComparison(const Comparison& comparison);

}  // namespace orvex::tools::view
