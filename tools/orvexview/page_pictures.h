// Pictures of a page: the image or the whole block, and the block in its place under the print head.
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

// Colors of the layout picture. Fill rows and purge bar show their inks on paper of their colors.
inline constexpr Rgb kHeadColor = {224, 224, 224};
inline constexpr Rgb kFillPaper = {216, 232, 250};
inline constexpr Rgb kPurgePaper = {253, 236, 205};
inline constexpr Rgb kImageOutline = {96, 96, 96};
inline constexpr Rgb kTickColor = {128, 128, 128};

// Margin around the head and, along the row, around the block, in pixels of the picture.
inline constexpr uint32_t kLayoutMargin = 24;

// Returns the longer side of the layout without its margins, in pixels of the printer.
uint32_t LayoutLength(const PrintedPage& page, const PagePlacement& placement);

// Draws the head as a gray band with a tick every 10 mm, longer every 50 mm, and the block on it with its
// image outlined. The picture is as sent: row 0 of the head is at the top.
Picture DrawLayout(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                   uint32_t scale);

}  // namespace orvex::tools::view
