// A place at which inks differ, for people.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "driver/color/ink.h"
#include "tools/orvexview/page_placement.h"

namespace orvex::tools::view {

struct InkPlace {
    uint32_t row = 0;
    uint32_t x = 0;  // along the row
    uint32_t first = 0;
    uint32_t second = 0;
};

// Pixels with different inks, counted.
struct InkDifference {
    uint64_t pixels = 0;     // that were compared
    uint64_t different = 0;  // of them
    std::array<uint32_t, kInks> largest = {};
    InkPlace place;  // of the first one; meaningless if there is none

    void TakePixel(uint32_t row, uint32_t x, uint32_t first, uint32_t second);
};

// Returns "K 12  C 0  M 0  Y 255".
std::string InksText(uint32_t inkValue);

// Returns where a place of the block is on the label as it reads, "(10, 20) of the label", or
// "row 3, pixel 7 of the block" when it is outside of the label.
std::string PlaceText(const PagePlacement& placement, const InkPlace& place);

// Returns the largest difference of each ink, "K 12  C 0  M 0  Y 255 of 255".
std::string LargestText(const InkDifference& difference);

}  // namespace orvex::tools::view
