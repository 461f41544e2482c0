// Plain definition of the order in which a page's pixels are printed: orientation, rotation and mirroring,
// one pixel at a time.
#pragma once

#include <cstdint>

#include "driver/render/page_rows.h"

namespace orvex::plain {

// Returns the color at place `i` of image row `row`. A page has a width, a height, and Pixel(x, y), its color
// there.
template <typename Page>
uint32_t PagePixel(const Page& page, RowOrder order, int32_t row, int32_t i) {
    const int32_t w = page.width, h = page.height;
    if (order.landscape) {
        const bool rightToLeft = order.rotate180 != order.mirrorImage;
        return page.Pixel(rightToLeft ? w - 1 - i : i, order.rotate180 ? h - 1 - row : row);
    }
    if (!order.rotate180) return page.Pixel(order.mirrorImage ? row : w - 1 - row, i);
    if (!order.mirrorImage) return page.Pixel(row, h - 1 - i);
    // Such pages are shifted by a column: the first row continues into the next scan line, and past the last
    // one it is white.
    if (row > 0) return page.Pixel(w - row, h - 1 - i);
    return i > 0 ? page.Pixel(0, h - i) : 0xFFFFFF;
}

}  // namespace orvex::plain
