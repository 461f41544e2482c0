// The 17-point grid of a colour cache, taken out of it: one ink value for each grid colour.
#pragma once

#include <cstdint>

#include "driver/color/color_cache.h"

namespace orvex {

struct InkGrid {
    // Red varies slowest, blue fastest.
    uint32_t inks[kGridPoints];

    static constexpr int Index(int redStep, int greenStep, int blueStep) {
        return (redStep * kGridSteps + greenStep) * kGridSteps + blueStep;
    }
};

// Copies the grid out of a cache, as its entries are stored.
void CopyGridOut(const uint32_t* cache, InkGrid* grid);

// The ink value of a colour between the grid points, linear along blue, green and red. Components outside 0
// to 255 count as the nearer of the two. The flag has no effect.
uint32_t GridLookup(const InkGrid& grid, int blue, int green, int red, bool flag);

}  // namespace orvex
