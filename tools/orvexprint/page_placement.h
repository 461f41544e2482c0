// Pictures placed on a page at their real size.
#pragma once

#include <cstdint>

#include "tools/common/picture.h"
#include "tools/orvexprint/resample.h"

namespace orvex::tools::print {

struct PagePlacing {
    uint32_t pageWidth;  // device pixels, as the page reads
    uint32_t pageHeight;
    uint32_t dpi;        // of the device
    double untaggedDpi;  // resolution of pictures that state none
    bool fit = false;    // scale to the largest size that fits, instead of the real one
    Enlarging enlarging = Enlarging::kNearest;
};

// The rectangle of a picture in device pixels, from the page's top left corner.
struct PagePlace {
    uint32_t left;
    uint32_t top;
    uint32_t width;
    uint32_t height;
};

// Returns the place of a picture, in the middle of the page. Throws PageError if its real size is larger than
// the page, or smaller than a pixel.
PagePlace FindPlace(const RasterImage& image, const PagePlacing& placing);

// Draws the picture on the page whose first pixel is at `bits`; `stride` is the number of pixels from row to
// row. Pixels around the picture stay untouched.
void DrawPage(const RasterImage& image, const PagePlacing& placing, uint32_t* bits, size_t stride);

}  // namespace orvex::tools::print
