#include "driver/color/ink_grid.h"

#include <algorithm>

namespace orvex {

namespace {

// Place of a component between two grid points. 255 lies on the upper one.
struct GridSpan {
    explicit GridSpan(int component) {
        const int value = std::clamp(component, 0, 255);
        lower = value / 16;
        fraction = value == 255 ? 16 : static_cast<uint32_t>(value % 16);
    }
    int lower;          // 0 to 15; the upper point is the next one
    uint32_t fraction;  // in sixteenths
};

// Returns sixteen times the value between two others.
uint32_t Between(uint32_t lower, uint32_t upper, uint32_t fraction) {
    return lower * (16 - fraction) + upper * fraction;
}

}  // namespace

void CopyGridOut(const InkValue* table, InkGrid* grid) {
    for (int red = 0; red < kGridSteps; ++red) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int blue = 0; blue < kGridSteps; ++blue) {
                grid->inks[GridIndex(red, green, blue)] =
                    table[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))];
            }
        }
    }
}

InkValue GridLookup(const InkGrid& grid, int blue, int green, int red, bool flag) {
    (void)flag;
    const GridSpan b(blue), g(green), r(red);
    const InkValue* corner = grid.inks + GridIndex(r.lower, g.lower, b.lower);
    InkValue inks = 0;
    for (int ink = 0; ink < kInks; ++ink) {
        const auto amountAt = [&](int redStep, int greenStep, int blueStep) {
            return InkAmount(corner[GridIndex(redStep, greenStep, blueStep)], ink);
        };
        const auto alongBlue = [&](int redStep, int greenStep) {
            return Between(amountAt(redStep, greenStep, 0), amountAt(redStep, greenStep, 1), b.fraction);
        };
        const auto alongGreen = [&](int redStep) {
            return Between(alongBlue(redStep, 0), alongBlue(redStep, 1), g.fraction);
        };
        const uint32_t alongRed = Between(alongGreen(0), alongGreen(1), r.fraction);
        inks |= alongRed / (16 * 16 * 16) << 8 * ink;
    }
    return inks;
}

}  // namespace orvex
