// A large page, white but for marks whose colors tell their place: a frame around it, and one mark inside
// each scan line.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/windows.h"

namespace orvex {

struct MarkedPage {
    MarkedPage(int32_t widthPx, int32_t heightPx);

    // The pixel at that place.
    uint32_t Color(int32_t x, int32_t y) const;
    // Puts the marks onto a white page.
    void Draw(SURFOBJ& surface) const;

    // Where a scan line or a column is not white, in no order, in place of what `marks` held.
    void MarksOfLine(int32_t y, std::vector<int32_t>& marks) const;
    void MarksOfColumn(int32_t x, std::vector<int32_t>& marks) const;

    int32_t width;
    int32_t height;

  private:
    int32_t InnerMark(int32_t y) const;
    std::vector<std::vector<int32_t>> linesOfColumn_;  // whose inner mark lies in that column
};

}  // namespace orvex
