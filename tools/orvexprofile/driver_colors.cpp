#include "tools/orvexprofile/driver_colors.h"

#include <algorithm>

#include "driver/color/color_cache.h"
#include "driver/color/ink.h"

namespace orvex::tools::profile {

namespace {

// The even components on both sides of a component, and its place between them: 0 or a half of the way.
struct HalfGridPlace {
    uint32_t low;
    uint32_t high;
    double part;

    explicit HalfGridPlace(uint32_t component)
        : low(component & 0xFE),
          high(std::min(low + 2, 254u)),
          part(component & 1 && component != 255 ? 0.5 : 0) {}
};

uint32_t BetweenStoredColors(uint32_t color) {
    const HalfGridPlace red(color >> 16 & 0xFF), green(color >> 8 & 0xFF), blue(color & 0xFF);
    double amounts[kInks] = {};
    for (int corner = 0; corner < 8; ++corner) {
        const bool farRed = corner & 4, farGreen = corner & 2, farBlue = corner & 1;
        const double weight = (farRed ? red.part : 1 - red.part) * (farGreen ? green.part : 1 - green.part) *
                              (farBlue ? blue.part : 1 - blue.part);
        const uint32_t inks = g_colorCache[ColorIndex(
            farRed ? red.high : red.low, farGreen ? green.high : green.low, farBlue ? blue.high : blue.low)];
        for (int ink = 0; ink < kInks; ++ink) amounts[ink] += weight * InkAmount(inks, ink);
    }
    const auto rounded = [&](int ink) { return static_cast<uint32_t>(amounts[ink] + 0.5); };
    return PackInks(rounded(kBlackInk), rounded(kCyanInk), rounded(kMagentaInk), rounded(kYellowInk));
}

}  // namespace

Variant LoadedEntries(int version) {
    const int steps = LayoutOf(version).steps;
    Variant entries;
    entries.reserve(LayoutOf(version).Entries());
    for (int red = 0; red < steps; ++red) {
        for (int green = 0; green < steps; ++green) {
            for (int blue = 0; blue < steps; ++blue) {
                entries.push_back(
                    g_colorCache[ColorIndex(StoredComponent(steps, red), StoredComponent(steps, green),
                                            StoredComponent(steps, blue))]);
            }
        }
    }
    return entries;
}

bool PrintsAsMeant(int version) {
    return version != 3 && version != 4;
}

InkSource LoadedColors(int version) {
    const auto look = PrintsAsMeant(version) ? LookupColor : BetweenStoredColors;
    return [look](std::span<const uint32_t> colors, std::span<uint32_t> inks) {
        std::transform(colors.begin(), colors.end(), inks.begin(), look);
    };
}

std::vector<uint32_t> PrintedInks(std::span<const uint32_t> colors) {
    std::vector<uint32_t> inks(colors.size());
    std::transform(colors.begin(), colors.end(), inks.begin(), LookupColor);
    return inks;
}

std::vector<uint32_t> ColorsEvery(int step) {
    std::vector<uint32_t> components;
    for (int value = 0; value < 255; value += step) components.push_back(static_cast<uint32_t>(value));
    components.push_back(255);
    std::vector<uint32_t> colors;
    colors.reserve(components.size() * components.size() * components.size());
    for (uint32_t red : components) {
        for (uint32_t green : components) {
            for (uint32_t blue : components) colors.push_back(ColorIndex(red, green, blue));
        }
    }
    return colors;
}

}  // namespace orvex::tools::profile
