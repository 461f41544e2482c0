#include "color/color_cache.h"

#include <emmintrin.h>

#include <algorithm>

#include "color/generic_conversion.h"

uint32_t g_colorCache[kCacheEntries];
int32_t g_cacheKind = kEntries;

namespace {

// Where a component lies between two grid values. The fraction counts sixteenths, also in the last cell,
// which is only 15 wide: deliberate, so 255 lies a sixteenth short of the upper value there.
struct GridCell {
    explicit GridCell(uint32_t value)
        : lower(value & 0xF0), upper(std::min(lower + 16, 255u)), fraction(value & 0x0F) {}
    uint32_t lower;
    uint32_t upper;
    uint32_t fraction;
};

// The inks of two ink values, 16 bits each, side by side: the one at the lower and the one at the upper red
// of a corner.
__m128i LoadPair(const uint32_t* lowerRed, const uint32_t* upperRed) {
    const __m128i lower = _mm_cvtsi32_si128(static_cast<int>(*lowerRed));
    const __m128i upper = _mm_cvtsi32_si128(static_cast<int>(*upperRed));
    return _mm_unpacklo_epi8(_mm_unpacklo_epi32(lower, upper), _mm_setzero_si128());
}

// Vectors of weights, in sixteenths: the same for both ink values of a pair, or what red's fraction leaves to
// the lower one and gives to the upper one.
constexpr struct Weights {
    constexpr Weights() {
        for (uint16_t sixteenths = 0; sixteenths <= 16; ++sixteenths) {
            for (int lane = 0; lane < 8; ++lane) {
                same[sixteenths][lane] = sixteenths;
                shared[sixteenths][lane] = lane < 4 ? 16 - sixteenths : sixteenths;
            }
        }
    }
    alignas(16) uint16_t same[17][8] = {};
    alignas(16) uint16_t shared[17][8] = {};
} kWeights;

__m128i Weighted(__m128i inks, const uint16_t (&weights)[8]) {
    return _mm_mullo_epi16(inks, _mm_load_si128(reinterpret_cast<const __m128i*>(weights)));
}

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

uint32_t LookupColor(uint32_t pixel) {
    uint32_t& entry = g_colorCache[pixel & kColorBits];
    if (entry != kNotComputed) return entry;
    const uint8_t blue = static_cast<uint8_t>(pixel);
    const uint8_t green = static_cast<uint8_t>(pixel >> 8);
    const uint8_t red = static_cast<uint8_t>(pixel >> 16);
    if (g_cacheKind == kGrid) {
        InterpolateGridEntry(blue, green, red, &entry, g_colorCache);
    } else if (g_cacheKind == kHalfGridEntries || g_cacheKind == kHalfGridPlanes) {
        AverageHalfGridEntry(blue, green, red, &entry);
    }
    return entry;
}

bool InterpolateGridEntry(uint8_t blue, uint8_t green, uint8_t red, uint32_t* entry, const uint32_t* table) {
    const GridCell b(blue), g(green), r(red);

    // The square's diagonal blue = green parts it into two triangles. Both have its lower and its upper
    // corner; the third is the one towards the component that is further on, towards green on the diagonal
    // itself.
    const bool blueLeads = b.fraction > g.fraction;
    const uint32_t further = std::max(b.fraction, g.fraction);
    const uint32_t nearer = std::min(b.fraction, g.fraction);
    const uint32_t low = ColorIndex(0, g.lower, b.lower);
    const uint32_t third = blueLeads ? ColorIndex(0, g.lower, b.upper) : ColorIndex(0, g.upper, b.lower);
    const uint32_t high = ColorIndex(0, g.upper, b.upper);

    // Weights and inks are whole numbers, and what the weights of a step add up to, 16, twice, takes a byte
    // to no more than 16 bits: nothing is lost before the truncation.
    const uint32_t* lowerRed = table + ColorIndex(r.lower, 0, 0);
    const uint32_t* upperRed = table + ColorIndex(r.upper, 0, 0);
    __m128i pair = Weighted(LoadPair(lowerRed + low, upperRed + low), kWeights.same[16 - further]);
    pair = _mm_add_epi16(
        pair, Weighted(LoadPair(lowerRed + third, upperRed + third), kWeights.same[further - nearer]));
    pair = _mm_add_epi16(pair, Weighted(LoadPair(lowerRed + high, upperRed + high), kWeights.same[nearer]));
    pair = Weighted(pair, kWeights.shared[r.fraction]);
    const __m128i inks = _mm_srli_epi16(_mm_add_epi16(pair, _mm_srli_si128(pair, 8)), 8);
    *entry = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(inks, inks)));
    return true;
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
