// Putting a picture on a page at its real size.
#pragma once

#include <cstdint>

#include "tools/common/raster_image.h"
#include "tools/orvexprint/resample.h"

namespace orvex::tools::print {

struct PagePlacing {
    uint32_t pageWidth;  // device pixels, as the page is read
    uint32_t pageHeight;
    uint32_t dpi;        // of the device
    double untaggedDpi;  // resolution of pictures that name none
    bool fit = false;    // scale to the largest size that the page holds, instead of the real one
    Enlarging enlarging = Enlarging::kNearest;
};

// Where a picture goes: device pixels, from the page's top left corner.
struct PagePlace {
    uint32_t left;
    uint32_t top;
    uint32_t width;
    uint32_t height;
};

// The place of a picture in the middle of the page. Throws PageError when its real size is larger than the
// page, or smaller than a pixel.
PagePlace FindPlace(const RasterImage& image, const PagePlacing& placing);

// Puts the picture on the page, of which `bits` is the first pixel and `stride` the pixels from row to row.
// What lies around the picture stays as it is.
void DrawPage(const RasterImage& image, const PagePlacing& placing, uint32_t* bits, size_t stride);

}  // namespace orvex::tools::print
