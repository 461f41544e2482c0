// Pictures of a page, all of them from one pass over its rows.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "tools/common/picture.h"
#include "tools/orvexview/page_placement.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// A part of a block, in pixels along the row and in rows.
struct BlockArea {
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 0;
    uint32_t rows = 0;

    bool operator==(const BlockArea&) const = default;
};

BlockArea ImageArea(const PagePlacement& placement);
// Returns the whole block, with its fill rows and purge bar.
BlockArea WholeBlock(const PrintedPage& page);

// A further user of a page's rows, in the pass that draws them.
class RowUser {
  public:
    virtual ~RowUser() = default;
    // Takes the next row of the block; `repeats` says that it is like the one before.
    virtual void TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) = 0;
};

// The pictures to draw of a page. `scale` x `scale` pixels become one.
struct Drawing {
    BlockArea area;  // of the composite and the inks
    uint32_t scale = 1;
    bool composite = false;
    bool inks = false;
    bool turned = false;      // composite and inks by a quarter, as a portrait label reads
    uint32_t blockScale = 0;  // of the whole block; 0: it is not drawn
    std::vector<RowUser*> users = {};
};

// The pictures; if not turned, as the page was sent: row 0 at the top. What was not asked for is empty.
struct PagePictures {
    Picture composite;                // all inks on white paper, 3 channels
    std::array<Picture, kInks> inks;  // one ink each, black on white, 1 channel
    Picture block;                    // like the composite, never turned
    std::array<double, kInks> means;  // of the amount of each ink over the image, 0 to 1
};

// Reads the rows of a page once and draws all that is asked for, on all processors. The model is that of the
// print file's resolution.
PagePictures DrawPage(const InkModel& model, const PrintedPage& page, const PagePlacement& placement,
                      const Drawing& drawing);

// Returns the parts of the area that show consecutive lines of its picture. Composite and inks of a part have
// at most `mostBytes` of samples, but at least one line: pictures with every pixel are drawn part by part.
std::vector<BlockArea> Bands(const Drawing& drawing, size_t mostBytes);

}  // namespace orvex::tools::view
