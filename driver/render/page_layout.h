// Where a page lies under the print head: one pure function from the page and the job's settings to every
// measure that the engine and the row loop need.
//
// The rows of a page lie side by side across the print head, row 0 nearest to its near end; a row runs along
// the paper. A portrait page is sent column by column.
//
//     near end   +- the engine's page: pageWUnits x pageLengthUnits --------------+
//                |                                                                |
//                |    topOff pixels                                               |
//                |                                                                |
//                |   +- raster block: rowWidth x headRows -------------------+    |
//                |   |  fullTop fill rows                                    |    |
//                |   |- - - - - -+- - - - - - - - - - - - - - - -+- - - - - -|    |
//                |   | leading   |  image:                       |  trailing |    |
//                |   | purge bar |  imageWidth x rows            | purge bar |    |
//                |   |- - - - - -+- - - - - - - - - - - - - - - -+- - - - - -|    |
//                |   |  fullBottom fill rows                                 |    |
//                |   +-------------------------------------------------------+    |
//     far end    +----------------------------------------------------------------+
//
// There is one purge bar or none, purgeLen pixels long. A leading one is its dots and then a gap; a trailing
// one is a gap, its dots, and one pixel that stays free. A block that fills the head is as wide as the
// head, 11.7 inches, and lies at its near end; any other has no fill rows, and topOff places it.
//
// Lengths whose names end in Units are the engine's, 1/7200 inch; all others are pixels. Everything is
// computed in 32-bit arithmetic that wraps.
#pragma once

#include <cstdint>

namespace orvex {

// A page's place across the print head. Any other value centers it.
enum Alignment : int16_t {
    kAlignRight = 0,  // at the far end
    kAlignCenter = 1,
    kAlignLeft = 2,  // at the near end
};

struct PageLayoutInput {
    int32_t bitmapWidth;
    int32_t bitmapHeight;
    int16_t dpi;  // never 0
    bool landscape;
    bool kws;
    bool kwsFullWidth;
    int16_t alignment;   // an Alignment
    int16_t purgeBar;    // 0 off, 1 leading, 2 trailing
    uint16_t purgeDots;  // pixels
    uint16_t purgeGap;   // mm
    int16_t phHOffset;   // print-head offset, 0.1 mm
};

// Place of the block and of the image in it.
struct Placement {
    int32_t topOff;
    int32_t fullTop;
    int32_t fullBottom;
};

// The effect of the print-head offset on the placement.
enum class OffsetEffect {
    kNone,
    kRightAligned,      // not full width, kAlignRight
    kLeftAligned,       // not full width, kAlignLeft
    kCentered,          // not full width, any other alignment
    kFullRightAligned,  // the same at full width
    kFullLeftAligned,
    kFullCentered,
};

struct PageLayout {
    int16_t dpi;
    bool fullWidth;      // the block fills the print head
    int32_t phOffsetPx;  // deliberately of the opposite sign to the setting
    int32_t imageWidth;
    int32_t rowWidth;  // the image and the purge bar
    int32_t rows;
    int32_t headRows;   // as announced to the engine; centered pages with an offset have more or fewer
    int32_t purgeLen;   // dots and gap, 0 without a purge bar
    int32_t purgeLead;  // 1 for a leading purge bar, else 0
    int32_t purgeDots;  // pixels of the purge bar that carry ink
    int32_t unit;       // engine units per pixel
    int32_t imageWUnits;
    int32_t imageHUnits;
    int32_t pageWUnits;
    int32_t pageHUnits;
    int32_t pageLengthUnits;
    Placement halves;   // full width: the fill in two halves; else all 0
    Placement aligned;  // after alignment
    Placement placed;   // after the print-head offset: what is printed
    OffsetEffect offsetEffect;
    int32_t offsetAmount;  // rows or units that OffsetEffect moved, as far as its log line gives them

    bool Is600Dpi() const { return dpi == 600; }
};

// Returns the width of the print head in pixels.
int32_t HeadWidthPx(int16_t dpi);

PageLayout ComputePageLayout(const PageLayoutInput& input);

}  // namespace orvex
