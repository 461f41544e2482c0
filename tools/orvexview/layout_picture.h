// A picture of the whole print head with the page's block in its place under it.
#pragma once

#include "tools/orvexview/page_placement.h"
#include "tools/orvexview/picture.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// Colours of the layout picture. Fill rows and purge bar show their inks on paper of these colours.
inline constexpr Rgb kHeadColor = {224, 224, 224};
inline constexpr Rgb kFillPaper = {216, 232, 250};
inline constexpr Rgb kPurgePaper = {253, 236, 205};
inline constexpr Rgb kImageOutline = {96, 96, 96};
inline constexpr Rgb kTickColor = {128, 128, 128};

// Pixels of the picture around the block along the row, and around the head.
inline constexpr uint32_t kLayoutMargin = 24;

// The longer side of the layout, in pixels of the printer, without its margins.
uint32_t LayoutLength(const PrintedPage& page, const PagePlacement& placement);

// The head as a grey band with a tick every 10 mm, longer every 50 mm; the block on it, its image outlined.
// As sent, row 0 of the head at the top.
Picture DrawLayout(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                   uint32_t scale);

}  // namespace orvex::tools::view
