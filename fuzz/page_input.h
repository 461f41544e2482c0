// Pages out of fuzzed inputs: the colors that they can have, and their bitmaps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/input.h"
#include "platform/windows.h"
#include "tests/plain/plain_rows.h"

namespace orvex::fuzz {

// The colors of a page and its color table: the driver's, and one for plain look-ups. A table that is filled
// in part has missing points, so that the order of the look-ups decides about inks.
class PageColors {
  public:
    explicit PageColors(FuzzInput& input);

    // Returns one of the colors. A whole table has 256 of them, and white; the others have 64.
    uint32_t Color(uint8_t value) const;
    // Looks a color up in the plain table.
    uint32_t PlainInk(uint32_t color) const;
    // Returns whether the driver's table is what the plain look-ups made of the other one.
    bool TablesAgree() const;

  private:
    int32_t kind_;
    plain::Neighborhood around_;
};

// A page bitmap, in a block that ends where its last pixel ends. Pixels that the input does not give are
// unlike their neighbors, or all alike.
struct PageArt {
    PageArt(FuzzInput& input, const PageColors& colors);

    size_t Offset(int32_t x, int32_t y) const;
    uint32_t Pixel(int32_t x, int32_t y) const;
    SURFOBJ Surface();

    int32_t width, height, pixelBytes, stride;
    bool upward;
    std::vector<uint8_t> bytes;
};

}  // namespace orvex::fuzz
