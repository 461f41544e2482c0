// Pages made from fuzzed inputs: their colors and bitmaps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/input.h"
#include "platform/windows.h"
#include "tests/plain/plain_rows.h"

namespace orvex::fuzz {

// The colors of a page, and two equal color tables: the driver's and one for plain look-ups. A table can have
// missing points, so that inks depend on the order of the look-ups.
class PageColors {
  public:
    explicit PageColors(FuzzInput& input);

    // Returns one of the page's colors: of 256 and white in a whole table, of 64 in any other.
    uint32_t Color(uint8_t value) const;
    // Looks a color up in the plain table and stores its ink there.
    uint32_t PlainInk(uint32_t color) const;
    // Returns whether the driver's look-ups changed its table as the plain ones changed the other.
    bool TablesAgree() const;

  private:
    int32_t kind_;
    plain::Neighborhood around_;
};

// A page bitmap in a block that ends with its last pixel. Pixels for which the input has no byte differ from
// their neighbors or are all alike.
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
