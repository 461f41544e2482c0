// The plain definition of a page's place under the print head, in numbers of any size that wrap to 32 bits at
// the end of each step.
#pragma once

#include "driver/render/page_layout.h"

namespace orvex::fuzz {

struct PlainLayout {
    bool fullWidth;
    int32_t phOffsetPx, imageWidth, rowWidth, rows, headRows, purgeLen, purgeLead;
    int32_t pageW, pageH, pageLength;  // 1/7200 inch
    int32_t topOff, fullTop, fullBottom;
};

PlainLayout ComputePlainLayout(const PageLayoutInput& input);

}  // namespace orvex::fuzz
