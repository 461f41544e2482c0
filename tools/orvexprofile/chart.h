// A picture of a whole profile: ramps of the primaries and of grey with the curves of their inks, and slices
// of the colour cube, each as it prints and with the ink that it takes.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "tools/common/picture.h"
#include "tools/orvexprofile/driver_colors.h"

namespace orvex::tools::profile {

struct ChartPlace {
    uint32_t x;
    uint32_t y;
    uint32_t width;
    uint32_t height;
};

// Ramps run from white to a primary in their middle and on to black; that of grey straight from white to
// black.
struct ChartRamp {
    std::string_view name;
    uint32_t middle;  // the colour half-way
};
constexpr std::array<ChartRamp, 7> kChartRamps = {{
    {"Red", 0xFF0000},
    {"Green", 0x00FF00},
    {"Blue", 0x0000FF},
    {"Cyan", 0x00FFFF},
    {"Magenta", 0xFF00FF},
    {"Yellow", 0xFFFF00},
    {"Grey", 0x808080},
}};
constexpr int kChartSlices = 9;  // of equal red, from 0 to 255; green grows downwards, blue to the right

// Where things lie, and which colour they show at a distance from their own corner.
ChartPlace RampPrint(int ramp);
ChartPlace RampCurves(int ramp);  // the amount of each ink, none at the bottom, in the ink's own colour
uint32_t RampColor(int ramp, uint32_t x);
ChartPlace SlicePrint(int slice);
ChartPlace SliceTotal(int slice);  // all inks together in grey: white for none, black for four times full
uint32_t SliceColor(int slice, uint32_t x, uint32_t y);

// Draws the profile whose variant is loaded into the driver. Characters of the title beyond ASCII are left
// out.
Picture DrawChart(std::string_view title, PrintVariant variant);

}  // namespace orvex::tools::profile
