// The colours between the points of the 17-point grid: linear along red, and over one half of the blue-green
// square across it.
#pragma once

#include <cstdint>

#include "driver/color/color_cache.h"

namespace orvex {

// Computes the entry of a colour out of the grid points of `table` and stores it in `entry`. Always true.
bool InterpolateGridEntry(uint8_t blue, uint8_t green, uint8_t red, uint32_t* entry, const uint32_t* table);

// The grid points of a table, close together: the processor's own caches hold them all, which they do not
// where the points lie in the table.
class GridCopy {
  public:
    // Copies the points out of `table`. False when one is missing there: it is computed when a pixel asks for
    // it, and changes the colours around it that come later, so that they must be taken from the table.
    bool Take(const uint32_t* table);

    // The same as InterpolateGridEntry computes from the table. The pixel's top byte is ignored.
    uint32_t Interpolate(uint32_t pixel) const;

  private:
    // The ink values at a step of red and at the next one.
    struct Pair {
        uint32_t inks[2];
    };
    Pair pairs_[(kGridSteps - 1) * kGridSteps * kGridSteps];  // indexed as an InkGrid
};

}  // namespace orvex
