// Pictures of a page.
#pragma once

#include <cstdint>
#include <optional>

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
};

BlockArea ImageArea(const PagePlacement& placement);
// Returns the whole block, with its fill rows and purge bar.
BlockArea WholeBlock(const PrintedPage& page);

// Draw part of a block as it was sent, row 0 at the top; `scale` x `scale` pixels become one. A composite
// shows all inks on white paper (3 channels); the other picture shows one ink, black on white (1 channel).
Picture DrawComposite(const PrintFile& file, const PrintedPage& page, const BlockArea& area, uint32_t scale);
Picture DrawInk(const PrintFile& file, const PrintedPage& page, const BlockArea& area, uint32_t scale,
                int ink);

// Turns a picture as the label reads.
Picture Upright(Picture picture, const PagePlacement& placement);

}  // namespace orvex::tools::view
