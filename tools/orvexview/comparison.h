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

// A comparison that takes a page's picture part by part.
class Comparer {
  public:
    // Throws std::runtime_error if the page's size in pixels is not the image's, which must outlive this.
    Comparer(uint32_t width, uint32_t height, const RasterImage& image);

    // Takes the next lines of the page, of 3 channels.
    void TakeLines(const Picture& lines);
    Comparison Result() const;

  private:
    void TakePixel(const uint8_t* samples, uint32_t x, uint32_t y);

    const RasterImage& image_;
    uint32_t linesTaken_ = 0;
    uint64_t sums_[3] = {};
    uint32_t worst_ = 0;
    Comparison result_;
};

// Returns the result as a table and a sentence.
std::string DescribeComparison(const Comparison& comparison);

}  // namespace orvex::tools::view
