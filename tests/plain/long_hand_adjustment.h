// Plain definition of the color adjustment, in double precision. Compiled without sanitizers, which would
// slow it down to no purpose.
#pragma once

#include <cstdint>
#include <vector>

#include "driver/color/color_adjustment.h"

namespace orvex::plain {

struct Adjustment {
    int brightness = 0, saturation = 0, tone = 0, cyan = 0, magenta = 0, yellow = 0, black = 0;
};

// Returns the adjusted grid: 4,913 inks, red slowest and blue fastest.
std::vector<uint32_t> AdjustedGrid(const std::vector<uint32_t>& grid, const Adjustment& v,
                                   const AdjustmentScales& s);

// Returns the ink of a color between eight points of a grid.
uint32_t InterpolatedInk(const std::vector<uint32_t>& grid, int blue, int green, int red);

}  // namespace orvex::plain
