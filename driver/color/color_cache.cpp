#include "driver/color/color_cache.h"

#include "driver/color/generic_conversion.h"
#include "driver/color/prism_interpolation.h"

namespace orvex {

alignas(16) uint32_t g_colorCache[kCacheEntries];
int32_t g_cacheKind = kEntries;

namespace {

// Of the table, while its kind is kGrid and no grid point is missing.
GridCopy gridCopy;
bool gridCopied = false;

// Whether a look-up left its entry missing.
bool leftMissing = false;

// What each amount of an ink leaves of the light: as a share of it, and of 255.
constexpr struct LightShares {
    constexpr LightShares() {
        for (int amount = 0; amount < 256; ++amount) {
            left[amount] = 1 - amount / 255.0;
            light[amount] = left[amount] * 255;
        }
    }
    double left[256] = {};
    double light[256] = {};
} kShares;

// The sum of some ink values as colours of light.
class LightSum {
  public:
    void Add(uint32_t ink) {
        const double unblackened = kShares.left[ink & 0xFF];
        red_ += Through(ink >> 8, unblackened);
        green_ += Through(ink >> 16, unblackened);
        blue_ += Through(ink >> 24, unblackened);
    }
    // The average of 2^shift values, as ink.
    uint32_t Average(int shift) const {
        return GenericInkConversion(static_cast<uint8_t>(red_ >> shift),
                                    static_cast<uint8_t>(green_ >> shift),
                                    static_cast<uint8_t>(blue_ >> shift), kFullInk);
    }

  private:
    // What an ink lets through of the light that it takes, truncated to a byte.
    static uint32_t Through(uint32_t ink, double unblackened) {
        return static_cast<uint32_t>(kShares.light[ink & 0xFF] * unblackened);
    }
    uint32_t red_ = 0;
    uint32_t green_ = 0;
    uint32_t blue_ = 0;
};

}  // namespace

void SetCacheKind(int32_t kind) {
    g_cacheKind = kind;
    gridCopied = kind == kGrid && gridCopy.Take(g_colorCache);
    leftMissing = false;
}

bool InksAreSettled() {
    return !leftMissing;
}

uint32_t LookupColor(uint32_t pixel) {
    uint32_t& entry = g_colorCache[pixel & kColorBits];
    if (entry != kNotComputed) return entry;
    // No mix of points that are all there is the sentinel.
    if (gridCopied) return entry = gridCopy.Interpolate(pixel);
    const uint8_t blue = static_cast<uint8_t>(pixel);
    const uint8_t green = static_cast<uint8_t>(pixel >> 8);
    const uint8_t red = static_cast<uint8_t>(pixel >> 16);
    if (g_cacheKind == kGrid) {
        InterpolateGridEntry(blue, green, red, &entry, g_colorCache);
    } else if (g_cacheKind == kHalfGridEntries || g_cacheKind == kHalfGridPlanes) {
        AverageHalfGridEntry(blue, green, red, &entry);
    } else {
        return entry;
    }
    if (entry == kNotComputed) leftMissing = true;
    return entry;
}

void AverageHalfGridEntry(uint8_t blue, uint8_t green, uint8_t red, uint32_t* entry) {
    // Deliberate: the neighbours lie around the byte-reversed colour, blue in the high byte and red in the
    // low one.
    const uint32_t components[] = {red, green, blue};
    uint32_t base = 0;
    uint32_t steps[3];  // from the base to the upper neighbour, along each odd component
    int odd = 0;
    for (int i = 0; i < 3; ++i) {
        base |= (components[i] & 0xFE) << 8 * i;
        // There is no even component above 255: it counts as its lower neighbour, 254.
        if (components[i] % 2 == 1 && components[i] != 255) steps[odd++] = 2u << 8 * i;
    }
    if (odd == 0) {
        *entry = g_colorCache[base];
        return;
    }
    LightSum sum;
    for (uint32_t neighbour = 0; neighbour < 1u << odd; ++neighbour) {
        uint32_t index = base;
        for (int i = 0; i < odd; ++i) index += (neighbour >> i & 1) * steps[i];
        sum.Add(g_colorCache[index]);
    }
    *entry = sum.Average(odd);
}

}  // namespace orvex
