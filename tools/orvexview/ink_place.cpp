#include "tools/orvexview/ink_place.h"

#include <algorithm>
#include <cstdlib>

namespace orvex::tools::view {

void InkDifference::TakePixel(uint32_t row, uint32_t x, uint32_t first, uint32_t second) {
    ++pixels;
    if (first == second) return;
    if (different++ == 0) place = {row, x, first, second};
    for (int ink = 0; ink < kInks; ++ink) {
        const int change = static_cast<int>(InkAmount(first, ink)) - static_cast<int>(InkAmount(second, ink));
        largest[ink] = std::max(largest[ink], static_cast<uint32_t>(std::abs(change)));
    }
}

std::string InksText(uint32_t inkValue) {
    std::string text;
    for (int ink = 0; ink < kInks; ++ink) {
        text += (ink == 0 ? "" : "  ") + std::string(1, kInkLetters[ink]) + " " +
                std::to_string(InkAmount(inkValue, ink));
    }
    return text;
}

std::string PlaceText(const PagePlacement& placement, const InkPlace& place) {
    const uint32_t row = place.row - placement.imageTop;
    const uint32_t along = place.x - placement.imageLeft;
    // Places before the label wrap around to large numbers.
    if (row >= placement.imageRows || along >= placement.imageWidth) {
        return "row " + std::to_string(place.row) + ", pixel " + std::to_string(place.x) + " of the block";
    }
    const bool portrait = placement.orientation == Orientation::kPortrait;
    const uint32_t x = portrait ? placement.imageRows - 1 - row : along;
    const uint32_t y = portrait ? along : row;
    return "(" + std::to_string(x) + ", " + std::to_string(y) + ") of the label";
}

std::string LargestText(const InkDifference& difference) {
    const auto& most = difference.largest;
    return InksText(PackInks(most[kBlackInk], most[kCyanInk], most[kMagentaInk], most[kYellowInk])) +
           " of 255";
}

}  // namespace orvex::tools::view
