// Colors between the grid points of a table: linear along red, and over half of the blue-green square.
#pragma once

#include <cstdint>

#include "driver/color/ink.h"

namespace orvex {

// Stores the ink of a color between the grid points of `table` in `entry`. Always returns true.
bool InterpolateGridEntry(uint8_t blue, uint8_t green, uint8_t red, InkValue* entry, const InkValue* table);

// The grid points of a table, packed so densely that the processor's own caches keep all of them.
class GridCopy {
  public:
    // Copies the points out of `table`. Returns false when one is missing: the first pixel that asks for it
    // has it computed, which changes later colors around it, so that those must be computed from the table.
    bool Take(const InkValue* table);

    // Returns what InterpolateGridEntry computes from the table. The pixel's top byte is ignored.
    InkValue Interpolate(uint32_t pixel) const;

  private:
    // The ink values at a step of red and at the next one.
    struct Pair {
        InkValue inks[2];
    };
    Pair pairs_[(kGridSteps - 1) * kGridSteps * kGridSteps];  // by GridIndex of the lower red
};

}  // namespace orvex
