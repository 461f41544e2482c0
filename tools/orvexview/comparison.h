// The difference between a preview and the picture that was printed.
#pragma once

#include <cstdint>
#include <string>

#include "tools/common/picture.h"

namespace orvex::tools::view {

struct Comparison {
    // Differences of red, green and blue, in steps of 1/255.
    uint32_t largest[3] = {};
    double mean[3] = {};
    // The pixel with the largest difference in any channel; meaningless if there is none.
    uint32_t worstX = 0;
    uint32_t worstY = 0;
    uint64_t pixels = 0;
    uint64_t different = 0;  // pixels that differ in any channel
};

// Compares a picture of 3 channels with an image. Throws std::runtime_error if their sizes differ.
Comparison Compare(const Picture& picture, const RasterImage& image);

// Returns the result as a table and a sentence.
std::string DescribeComparison(const Comparison& comparison);

}  // namespace orvex::tools::view
