// The picture of a page in its place under the print head: the block on a gray band as wide as the head, with
// a scale, the names of the sides, the direction of the paper and a legend with numbers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/common/picture.h"
#include "tools/orvexview/page_placement.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// Colors of the layout picture. Fill rows and purge bar show their inks on paper of their colors.
inline constexpr Rgb kHeadColor = {224, 224, 224};
inline constexpr Rgb kFillPaper = {216, 232, 250};
inline constexpr Rgb kPurgePaper = {253, 236, 205};
inline constexpr Rgb kImageOutline = {96, 96, 96};
inline constexpr Rgb kTickColor = {128, 128, 128};
inline constexpr Rgb kTextColor = {32, 32, 32};

// Margin around the head and, along the row, around the block, in pixels of the picture.
inline constexpr uint32_t kLayoutMargin = 40;

// Returns how many rows the picture shows: those of the head, and more if the block is beyond its end.
uint32_t LayoutRows(const PrintedPage& page, const PagePlacement& placement);

// Returns the legend's lines, without the one about the picture's scale.
std::vector<std::string> LayoutLegend(const PrintFile& file, const PagePlacement& placement);

// How the picture is made of the block.
struct LayoutView {
    uint32_t scale = 1;   // `scale` x `scale` pixels of the printer are one
    bool turned = false;  // by a quarter, as a portrait label reads; if not, row 0 of the head is at the top
};

// Draws the layout around the picture of the block, which is as sent and of that scale.
Picture DrawLayout(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                   Picture block, const LayoutView& view);

}  // namespace orvex::tools::view
