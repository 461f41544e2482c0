// The grid points of a color table by themselves.
#pragma once

#include <cstdint>

#include "driver/color/color_table.h"

namespace orvex {

struct InkGrid {
    InkValue inks[kGridPoints];  // by GridIndex
};

// Copies the grid out of a table, with the entries as they are stored.
void CopyGridOut(const InkValue* table, InkGrid* grid);

// Returns the ink value of a color between the grid points, linear along blue, green and red. Components
// outside 0 to 255 count as the nearer of the two. The flag has no effect.
InkValue GridLookup(const InkGrid& grid, int blue, int green, int red, bool flag);

}  // namespace orvex
