// The colour adjustment, written out at length in double precision. Compiled without sanitizers, which watch
// the driver and not its measure.
#pragma once

#include <cstdint>
#include <vector>

namespace orvex {

// The seven values, and their scales.
struct Values {
    int brightness = 0, saturation = 0, tone = 0, cyan = 0, magenta = 0, yellow = 0, black = 0;
};
struct Scales {
    double tone = 100, saturation = 100, brightness = 100, black = 200, yellow = 100, cyan = 100,
           magenta = 100;
};

// The grid, 4,913 inks with red slowest and blue fastest, as it is after an adjustment.
std::vector<uint32_t> LongHandAdjustment(const std::vector<uint32_t>& grid, const Values& v, const Scales& s);

// The ink between eight points of a grid.
uint32_t LongHandLookup(const std::vector<uint32_t>& grid, int blue, int green, int red);

}  // namespace orvex
