// Plain definition of the rows of a page that the print engine gets: fill rows, purge dots and image.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "driver/config/device_mode.h"
#include "tests/plain/layout_input.h"
#include "tests/plain/page_layout.h"
#include "tests/plain/page_order.h"
#include "tests/plain/plain_rows.h"

namespace orvex::plain {

// A page has a width, a height, and Pixel(x, y), its color there. `inkOf` returns the ink of a color; it is
// called once for every pixel, in the order of printing.
template <typename Page, typename InkOf>
class PrintedRows {
  public:
    PrintedRows(const DeviceMode& mode, uint32_t pageNumber, const Page& page, InkOf inkOf)
        : mode_(mode),
          page_(page),
          inkOf_(std::move(inkOf)),
          layout_(ComputeLayout(LayoutInput(mode, page.width, page.height))),
          row_(static_cast<size_t>(layout_.rowWidth)) {
        if (HasPurgeDots(pageNumber)) WritePurgeDots();
    }

    // Returns the number of rows. A fill can have a negative number of rows, of which none is sent.
    int64_t Count() const { return TopRows() + layout_.rows + std::max(layout_.fullBottom, 0); }

    // Returns the next row, from the first to the last.
    const std::vector<uint32_t>& Next() {
        const int64_t imageRow = number_ - TopRows();
        if (imageRow >= 0 && imageRow < layout_.rows) {
            WriteImage(static_cast<int32_t>(imageRow));
        } else if (number_ == 0 || imageRow == layout_.rows) {
            WriteFill(imageRow < 0);  // once for all fill rows on this side
        }
        ++number_;
        return row_;
    }

  private:
    bool At600Dpi() const { return Resolution(mode_) == 600; }
    int64_t TopRows() const { return std::max(layout_.fullTop, 0); }
    uint32_t* ImageArea() { return row_.data() + (layout_.purgeLead != 0 ? layout_.purgeLen : 0); }

    bool HasPurgeDots(uint32_t pageNumber) const {
        const auto frequency = static_cast<uint16_t>(mode_.priv.purgeFreq);
        if (mode_.priv.purgeBar <= 0) return false;
        return frequency != 0 ? (pageNumber - 1) % frequency == 0 : pageNumber == 1;
    }
    // After the image, the row's last pixel stays free.
    void WritePurgeDots() {
        const int64_t dots = static_cast<uint16_t>(mode_.priv.purgeDots);
        const int64_t first = layout_.purgeLead != 0 ? 0 : layout_.rowWidth - dots - 1;
        for (int64_t place = std::max<int64_t>(first, 0); place < first + dots; ++place) {
            row_[static_cast<size_t>(place)] = At600Dpi() ? 0x7F7F7F7F : 0xFFFFFFFF;
        }
    }
    // Fill rows before the image leave the row as it is if there is no pattern.
    void WriteFill(bool beforeImage) {
        for (int32_t i = 0; i < layout_.imageWidth; ++i) {
            const uint32_t amount = At600Dpi() ? 2 : 4;
            if (mode_.priv.kws != 0) {
                ImageArea()[i] = amount << 8 * (i % 4);
            } else if (!beforeImage) {
                ImageArea()[i] = 0;
            }
        }
    }
    void WriteImage(int32_t number) {
        const RowOrder order = {mode_.pub.dmOrientation == 2, mode_.priv.rotate180 != 0,
                                mode_.priv.mirrorImage != 0};
        const RowOptions options{mode_.priv.kws, At600Dpi(), static_cast<uint32_t>(mode_.priv.colorMode)};
        for (int32_t i = 0; i < layout_.imageWidth; ++i) {
            const uint32_t ink = inkOf_(PagePixel(page_, order, number, i));
            ImageArea()[i] = Print(ink, static_cast<size_t>(i), options);
        }
        // The engine must never see a page that begins with a pixel without ink.
        if (number == 0 && !row_.empty() && row_[0] == 0) row_[0] = 2;
    }

    const DeviceMode& mode_;
    const Page& page_;
    InkOf inkOf_;
    Layout layout_;
    std::vector<uint32_t> row_;  // pixels outside the image survive from row to row
    int64_t number_ = 0;
};

}  // namespace orvex::plain
