// Plain definition of a page's place under the print head: each step is computed in 64 bits and wraps to 32.
#pragma once

#include "driver/render/page_layout.h"

namespace orvex::plain {

struct Layout {
    bool fullWidth;
    int32_t phOffsetPx, imageWidth, rowWidth, rows, headRows, purgeLen, purgeLead;
    int32_t pageW, pageH, pageLength;  // 1/7200 inch
    int32_t topOff, fullTop, fullBottom;
};

Layout ComputeLayout(const PageLayoutInput& input);

// Returns the name of the first measure in which a layout differs from the plain one; null if there is none.
const char* DifferentMeasure(const PageLayout& layout, const Layout& expected);

}  // namespace orvex::plain
