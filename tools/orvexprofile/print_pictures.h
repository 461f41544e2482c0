// Pictures of what the driver prints through the loaded profile: a picture as it prints, with the place of
// each ink, and a chart of the whole profile.
//
// The chart has ramps of the primaries and of gray with the curves of their inks, and slices of the color
// cube, each as it prints and with the ink that it takes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "driver/color/ink.h"
#include "tools/common/ink_model.h"
#include "tools/common/picture.h"
#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Returns the model by which a preview shows a variant: full ink is 255, and half of that at 600 dpi.
InkModel InkModelOf(PrintVariant variant);

// Returns the resolution of a picture made from one of this density.
double PixelsPerInchOf(const std::optional<PixelDensity>& density);

struct InkPictures {
    Picture composite;                // in color, on white paper
    std::array<Picture, kInks> inks;  // K, C, M, Y, in gray: white without ink, black for full ink
    double pixelsPerInch = 0;
};

// Prints the picture through the loaded profile.
InkPictures PrintPicture(const RasterImage& picture, PrintVariant variant);

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
