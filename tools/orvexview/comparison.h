// The difference between a preview and the picture that was printed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/common/picture.h"
#include "tools/common/png_reader.h"

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

// A comparison that takes a page's picture part by part and reads the other one line by line, so that neither
// is in memory as a whole.
class Comparer {
  public:
    // `art` must outlive this. Throws std::runtime_error if the page's size in pixels is not that of the art.
    Comparer(uint32_t width, uint32_t height, PngReader& art);

    // Takes the next lines of the page, of 3 channels. Throws PageError if the art is damaged.
    void TakeLines(const Picture& lines);
    Comparison Result() const;

  private:
    void TakePixel(const uint8_t* samples, uint32_t expectedColor, uint32_t x, uint32_t y);

    PngReader& art_;
    std::vector<uint32_t> artLine_;
    uint32_t linesTaken_ = 0;
    uint64_t sums_[3] = {};
    uint32_t worst_ = 0;
    Comparison result_;
};

// Returns the result as a table and a sentence.
std::string DescribeComparison(const Comparison& comparison);

}  // namespace orvex::tools::view
