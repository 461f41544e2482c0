// A picture of a whole profile: ramps of the primaries and of gray with the curves of their inks, and slices
// of the color cube, each as it prints and with the ink that it takes.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "tools/common/picture.h"
#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

struct ChartPlace {
    uint32_t x;
    uint32_t y;
    uint32_t width;
    uint32_t height;
};

// A ramp from white over a primary to black.
struct ChartRamp {
    std::string_view name;
    uint32_t middle;  // the color half-way
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
// Slices of equal red, from 0 to 255. Green grows downwards, blue to the right.
constexpr int kChartSlices = 9;

// The places of the chart's parts, and the color that each shows at a distance from its own corner.
ChartPlace RampPrint(int ramp);
ChartPlace RampCurves(int ramp);  // the amount of each ink, none at the bottom, in the ink's own color
uint32_t RampColor(int ramp, uint32_t x);
ChartPlace SlicePrint(int slice);
ChartPlace SliceTotal(int slice);  // all inks together in gray: white for none, black for four times full
uint32_t SliceColor(int slice, uint32_t x, uint32_t y);

// Draws the variant that is loaded into the driver. Leaves out characters of the title that are not ASCII.
Picture DrawChart(std::string_view title, PrintVariant variant);

}  // namespace orvex::tools::profile
