// Pictures placed on a page at their real size.
#pragma once

#include <cstdint>
#include <string>

#include "tools/common/picture.h"
#include "tools/common/picture_reader.h"
#include "tools/orvexprint/resample.h"

namespace orvex::tools::print {

// Whether a page may be turned by a quarter.
enum class Turning { kNever, kToFit };

struct PagePlacing {
    uint32_t pageWidth;  // device pixels, as the page reads
    uint32_t pageHeight;
    uint32_t dpi;        // of the device
    double untaggedDpi;  // resolution of pictures that state none
    bool fit = false;    // scale to the largest size that fits, instead of the real one
    Enlarging enlarging = Enlarging::kNearest;
    Turning turning = Turning::kNever;
};

// An axis of a picture on the page, in the direction of the picture.
struct PlacedAxis {
    uint32_t used;    // pixels of the picture that are printed, from its top left corner
    uint32_t length;  // device pixels; the same number unless the axis is resampled
    double scale;     // device pixels for a pixel of the picture; 1 if it is not resampled
};

// The rectangle of a picture in device pixels, from the page's top left corner.
struct PagePlace {
    uint32_t left;
    uint32_t top;
    PlacedAxis across;  // of the picture's width
    PlacedAxis down;    // of the picture's height
    bool turned;        // clockwise by a quarter

    uint32_t Width() const { return turned ? down.length : across.length; }
    uint32_t Height() const { return turned ? across.length : down.length; }
};

// Returns the resolution of a picture in pixels per meter.
PixelDensity DensityOf(const PictureSize& picture, double untaggedDpi);

// Returns the place of a picture, in the middle of the page. A picture of the device's resolution is never
// resampled: if it has a pixel more than the page, since programs round up, it loses its last line or column.
// Throws PageError if its real size is larger than the page, or smaller than a pixel.
PagePlace FindPlace(const PictureSize& picture, const PagePlacing& placing);

// Returns how and why the picture is resampled, after the words "page 2 is": "enlarged 2.96 times: its
// resolution is 203 dpi, the job's is 600 dpi". Empty if it is not.
std::string ResamplingText(const PictureSize& picture, const PagePlacing& placing, const PagePlace& place);

// Draws the picture on the page whose first pixel is at `bits`; `stride` is the number of pixels from row to
// row. Pixels around the picture stay untouched.
void DrawPage(PictureReader& picture, const PagePlacing& placing, uint32_t* bits, size_t stride);

}  // namespace orvex::tools::print
