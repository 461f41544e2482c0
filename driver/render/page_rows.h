// Reading the page bitmap as raster rows, in any orientation.
#pragma once

#include <cstddef>
#include <cstdint>

#include "driver/support/heap.h"

namespace orvex {

// A page bitmap in memory; it is only read.
struct PageBitmap {
    const uint8_t* firstLine;  // the top scan line
    int32_t width;             // pixels
    int32_t height;            // scan lines
    ptrdiff_t stride;          // bytes from a scan line to the next one down
    int32_t bytesPerPixel;     // 3 (B, G, R) or 4 (a 32-bit pixel)
};

struct RowOrder {
    bool landscape;  // rows are scan lines; otherwise they are columns
    bool rotate180;
    bool mirrorImage;
};

// Reader of a page's rows. The pixels of a column lie a whole scan line apart, each on a memory page of its
// own, so a portrait page is read in bands of neighboring columns into a buffer that the reader owns.
class RowReader {
  public:
    RowReader(const PageBitmap& bitmap, RowOrder order);

    // Returns false when out of memory for the band; no row can be read then.
    explicit operator bool() const { return !NeedsBand() || band_ != nullptr; }

    int32_t RowCount() const { return order_.landscape ? bitmap_.height : bitmap_.width; }
    int32_t RowWidth() const { return order_.landscape ? bitmap_.width : bitmap_.height; }

    // Returns row `row`, 0 to RowCount() - 1, as RowWidth() 32-bit pixels whose top bytes mean nothing. It
    // stays valid until the next call, and may lie in the bitmap itself.
    //
    // Deliberate: portrait pages that are both rotated and mirrored are shifted by one column. Row 0 reads
    // the column after the last one, where each scan line continues with the first pixel of the next, and the
    // last one with paper white.
    const uint32_t* Row(int32_t row);

    // Returns whether the last row has the same pixels as the one before it, as most rows of a label have.
    bool Repeats() const { return repeats_; }

  private:
    bool NeedsBand() const { return RowWidth() > 0 && RowCount() > 0; }
    const uint8_t* Line(int32_t y) const { return bitmap_.firstLine + y * bitmap_.stride; }
    const uint32_t* LandscapeRow(int32_t row);
    const uint32_t* PortraitRow(int32_t row);
    int32_t Column(int32_t row) const;
    void ReadBand(int32_t firstColumn);
    struct Range {
        int32_t begin, end;
    };
    void ReadColumns(const uint8_t* first, ptrdiff_t step, Range columns, Range lines);
    void ReadOverhang();
    // Compares the next row, `bytes` bytes at `pixels`, with the last one, and remembers it.
    void CompareWithLast(const void* pixels, size_t bytes);

    PageBitmap bitmap_;
    RowOrder order_;
    bool inPlace_;
    HeapArray<uint32_t> band_;  // kBandColumns rows, bandPitch_ apart; a single row when landscape
    ptrdiff_t bandPitch_ = {};  // pixels
    static constexpr int32_t kNoBand = -1;
    int32_t bandFirst_ = kNoBand;  // first column in the band
    const void* last_ = nullptr;   // the row that was read last, or null once it can't be compared
    bool repeats_ = {};
};

}  // namespace orvex
