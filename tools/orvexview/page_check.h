// Faults of a page's inks, found in the pass that draws it: more ink than the stock takes, lines too thin to
// print, and art of too low a resolution.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tools/orvexview/page_pictures.h"

namespace orvex::tools::view {

// Pixels of a line of 1 mm, the shortest that is looked for.
constexpr uint32_t LeastThinLine(uint32_t dpi) {
    return dpi * 10 / 254;
}

struct PageFacts {
    double mostInk = 0;      // of a pixel, all inks together: 1 is one full ink
    uint64_t overLimit = 0;  // pixels with more than the limit
    uint64_t thinLines = 0;  // of one pixel on blank paper, at least LeastThinLine() long
    uint32_t enlarged = 1;   // times that every pixel of the art was repeated, along both axes
};

// The grid in which the edges of a picture are, along one axis.
class EdgeGrid {
  public:
    void Add(uint32_t place);
    // Returns the pixels from line to line of the grid; 1 for few edges, which tell nothing.
    uint32_t Step() const;

  private:
    uint32_t edges_ = 0;
    uint32_t first_ = 0;
    uint32_t step_ = 0;  // greatest common divisor of the edges' distances from the first one
};

// A check of the image's rows. Ink lines count that run along the feed or across it; a pixel belongs to one
// if it has ink and both pixels beside it are blank.
class PageCheck : public RowUser {
  public:
    // `limit` is a total of inks, of which 1 is one full ink.
    PageCheck(const InkModel& model, const BlockArea& image, double limit, uint32_t leastLine);

    void TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) override;
    // Returns the result after the last row.
    PageFacts Finish();

  private:
    void TakeInks(std::span<const uint32_t> inkValues);
    void FindLinesAcrossRows();
    void FindLinesAlongRow(const std::vector<uint8_t>& below);

    BlockArea image_;
    double limit_;
    uint32_t leastLine_;
    std::array<float, 256> share_;
    uint64_t overLimitInRow_ = 0;
    std::vector<uint8_t> above2_, above_, now_;  // 1 where a pixel has ink
    std::vector<uint32_t> streaks_;              // rows for which a line one pixel wide has lasted
    std::vector<uint8_t> columnEdges_;           // 1 where ink begins or ends in some row
    EdgeGrid rowEdges_;
    PageFacts facts_;
};

}  // namespace orvex::tools::view
