// Where a page lies under the print head: one pure function from the page and the job's settings to every
// measure that the engine and the row loop need.
#pragma once

#include <cstdint>

namespace orvex {

struct PageLayoutInput {
    int32_t bitmapWidth;   // pixels
    int32_t bitmapHeight;  // pixels
    int16_t dpi;           // never 0
    bool landscape;
    bool kws;
    bool kwsFullWidth;
    int16_t alignment;   // kAlignRight: far end of the print head; kAlignCenter; kAlignLeft: near end
    int16_t purgeBar;    // 0 off, 1 leading, 2 trailing
    uint16_t purgeDots;  // pixels
    uint16_t purgeGap;   // mm
    int16_t phHOffset;   // print-head offset, 0.1 mm
};

// Blank rows around the image and the engine's offset of the whole block, in pixels.
struct Placement {
    int32_t topOff;
    int32_t fullTop;
    int32_t fullBottom;
};

// What the print-head offset did to the placement.
enum class OffsetEffect {
    kNone,              // no offset, nothing to say
    kRightAligned,      // not full width, alignment 0
    kLeftAligned,       // not full width, alignment 2
    kCentered,          // not full width, any other alignment
    kFullRightAligned,  // the same at full width
    kFullLeftAligned,
    kFullCentered,
};

// Lengths ending in Units are the engine's, 1/7200 inch. Everything is computed in 32-bit arithmetic that
// wraps.
struct PageLayout {
    int16_t dpi;
    bool fullWidth;      // fill the whole width of the print head
    int32_t phOffsetPx;  // deliberately of the opposite sign to the setting
    int32_t imageWidth;  // pixels of a row that come from the bitmap
    int32_t rowWidth;    // pixels of a row: the image and the purge bar
    int32_t rows;        // image rows
    int32_t headRows;    // rows of the raster block as announced to the engine
    int32_t purgeLen;    // pixels that the purge bar adds to a row
    int32_t purgeLead;   // 1 when the purge bar precedes the image, else 0
    int32_t purgeDots;   // pixels of the purge bar that carry ink
    int32_t unit;        // engine units per pixel
    int32_t imageWUnits;
    int32_t imageHUnits;
    int32_t pageWUnits;
    int32_t pageHUnits;
    int32_t pageLengthUnits;  // the second extent of the engine's page
    Placement halves;         // full width: the fill in two halves; else all 0
    Placement aligned;        // after alignment
    Placement placed;         // after the print-head offset: what is printed
    OffsetEffect offsetEffect;
    int32_t offsetAmount;  // rows or units that OffsetEffect moved, as far as its log line tells them
};

// Width of the print head in pixels: 11.7 inches.
int32_t HeadWidthPx(int16_t dpi);

PageLayout ComputePageLayout(const PageLayoutInput& input);

}  // namespace orvex
