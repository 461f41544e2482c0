// The pages of the measurement target: where each patch lies, and the pages drawn.
//
// Rows of patches have letters, from A on through all pages, and columns have numbers.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tools/common/picture.h"
#include "tools/orvexprofile/target_patches.h"

namespace orvex::tools::profile {

struct TargetFormat {
    double widthMm = 100;
    double lengthMm = 150;
    double patchMm = 8;
    uint32_t pixelsPerInch = 300;
};

class TargetLayout {
  public:
    // Throws std::invalid_argument, in words, if a page has no room for a patch.
    TargetLayout(const TargetFormat& format, size_t patches);

    uint32_t Width() const { return width_; }  // pixels
    uint32_t Height() const { return height_; }
    size_t Pages() const;
    size_t Columns() const { return columns_; }
    uint32_t PatchSide() const { return side_; }

    // The place of a patch, counted from 0.
    struct Place {
        size_t page;  // counted from 0
        uint32_t x;   // of the top left corner, in pixels
        uint32_t y;
    };
    Place PlaceOf(size_t patch) const;
    // Returns the location as the page's letters and numbers tell it: "A1".
    std::string LocationOf(size_t patch) const;

    // Draws a page, with the patches' colors; text has the color of solid black ink.
    RasterImage Draw(std::span<const TargetPatch> patches, size_t page) const;

  private:
    size_t Rows() const { return (patches_ + columns_ - 1) / columns_; }

    size_t patches_;
    uint32_t pixelsPerInch_;
    uint32_t width_;
    uint32_t height_;
    uint32_t side_;
    size_t columns_;
    size_t rowsOfPage_;
};

}  // namespace orvex::tools::profile
