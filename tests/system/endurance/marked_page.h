// A large white page with marks whose colors depend on their place: a frame, and one mark inside each scan
// line.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/windows.h"

namespace orvex {

struct MarkedPage {
    MarkedPage(int32_t widthPx, int32_t heightPx);

    // Returns the pixel at that place.
    uint32_t Color(int32_t x, int32_t y) const;
    // Puts the marks onto a white page.
    void Draw(SURFOBJ& surface) const;

    // Replace `marks` by the places where a scan line or a column is not white, in no order.
    void MarksOfLine(int32_t y, std::vector<int32_t>& marks) const;
    void MarksOfColumn(int32_t x, std::vector<int32_t>& marks) const;

    int32_t width;
    int32_t height;

  private:
    int32_t InnerMark(int32_t y) const;
    std::vector<std::vector<int32_t>> linesOfColumn_;  // by the column of their inner mark
};

}  // namespace orvex
