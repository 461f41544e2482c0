#include "driver/color/color_cache.h"

#include "driver/color/generic_conversion.h"
#include "driver/color/prism_interpolation.h"

namespace orvex {

alignas(16) InkValue g_colorCache[kCacheEntries];
int32_t g_cacheKind = kEntries;

namespace {

// Compact copy of the cache's grid points; valid while `gridCopied`, as no point is missing then.
GridCopy gridCopy;
bool gridCopied = {};

// A look-up has left its entry missing.
bool leftMissing = {};

// The light that each amount of an ink lets through: its share, and that share of 255.
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

// The sum of some ink values, taken as colors of light.
class LightSum {
  public:
    void Add(InkValue inks) {
        const double unblackened = kShares.left[InkAmount(inks, kBlackInk)];
        red_ += Through(InkAmount(inks, kCyanInk), unblackened);
        green_ += Through(InkAmount(inks, kMagentaInk), unblackened);
        blue_ += Through(InkAmount(inks, kYellowInk), unblackened);
    }
    // Returns the average of 2^shift values, as ink.
    InkValue Average(int shift) const {
        return GenericInkConversion(static_cast<uint8_t>(red_ >> shift),
                                    static_cast<uint8_t>(green_ >> shift),
                                    static_cast<uint8_t>(blue_ >> shift), kFullInk);
    }

  private:
    // Returns the light that passes an amount of ink and the black, truncated to a byte.
    static uint32_t Through(uint32_t amount, double unblackened) {
        return static_cast<uint32_t>(kShares.light[amount] * unblackened);
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

InkValue LookupColor(uint32_t pixel) {
    InkValue& entry = g_colorCache[pixel & kColorBits];
    if (entry != kNotComputed) return entry;
    // Points that are all there never mix to kNotComputed.
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

void AverageHalfGridEntry(uint8_t blue, uint8_t green, uint8_t red, InkValue* entry) {
    // Deliberate: the neighbors lie around the byte-reversed color, with blue in the high byte.
    const uint32_t components[] = {red, green, blue};
    uint32_t base = 0;
    uint32_t steps[3];  // from the base to the upper neighbor, along each odd component
    int odd = 0;
    for (int i = 0; i < 3; ++i) {
        base |= (components[i] & 0xFE) << 8 * i;
        // No even component lies above 255, which counts as its lower neighbor, 254.
        if (components[i] % 2 == 1 && components[i] != 255) steps[odd++] = 2u << 8 * i;
    }
    if (odd == 0) {
        *entry = g_colorCache[base];
        return;
    }
    LightSum sum;
    for (uint32_t neighbor = 0; neighbor < 1u << odd; ++neighbor) {
        uint32_t index = base;
        for (int i = 0; i < odd; ++i) index += (neighbor >> i & 1) * steps[i];
        sum.Add(g_colorCache[index]);
    }
    *entry = sum.Average(odd);
}

}  // namespace orvex
