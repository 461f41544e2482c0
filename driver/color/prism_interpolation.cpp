#include "driver/color/prism_interpolation.h"

#include <simde/x86/sse2.h>

#include <algorithm>
#include <array>

namespace orvex {

namespace {

// Weights in sixteenths, one for each amount of two ink values.
using Weights = std::array<uint16_t, 8>;

// Returns one weight for all inks at the lower red, and one for those at the upper red.
constexpr Weights BothTimes(int lowerRed, int upperRed) {
    Weights weights{};
    for (size_t ink = 0; ink < weights.size(); ++ink) {
        weights[ink] = static_cast<uint16_t>(ink < weights.size() / 2 ? lowerRed : upperRed);
    }
    return weights;
}

// Shares of the corners of a blue-green square in a color. The diagonal blue = green splits the square into
// two triangles. Both have its lower and its upper corner; the third is the one toward the component that is
// further along, toward green on the diagonal itself.
struct alignas(64) SquareShares {
    Weights lower, third, upper;
    bool blueLeads;
};

// The shares by the fractions of green and blue: how many sixteenths they lie above the lower grid value.
// Deliberate: the fractions are sixteenths in the last cell, too, which is only 15 wide, so 255 lies a
// sixteenth short of the upper value there.
constexpr auto kSquareShares = [] {
    std::array<SquareShares, 256> shares{};
    for (int green = 0; green < 16; ++green) {
        for (int blue = 0; blue < 16; ++blue) {
            const int further = std::max(green, blue), nearer = std::min(green, blue);
            shares[static_cast<size_t>(16 * green + blue)] = {BothTimes(16 - further, 16 - further),
                                                              BothTimes(further - nearer, further - nearer),
                                                              BothTimes(nearer, nearer), blue > green};
        }
    }
    return shares;
}();

const SquareShares& SharesOf(uint32_t pixel) {
    return kSquareShares[(pixel >> 4 & 0xF0) | (pixel & 0x0F)];
}

// The shares of the two ends along red, by its fraction.
alignas(16) constexpr auto kRedShares = [] {
    std::array<Weights, 16> shares{};
    for (int red = 0; red < 16; ++red) shares[static_cast<size_t>(red)] = BothTimes(16 - red, red);
    return shares;
}();

__m128i Weighted(__m128i inks, const Weights& weights) {
    return _mm_mullo_epi16(inks, _mm_load_si128(reinterpret_cast<const __m128i*>(weights.data())));
}

// Spreads two ink values to 16 bits for each ink.
__m128i Widened(__m128i pair) {
    return _mm_unpacklo_epi8(pair, _mm_setzero_si128());
}

// Mixes the corners of a square, each a widened pair of ink values at the lower and the upper red. The
// weights of a step are whole numbers that add up to 16; two steps take a byte to 16 bits at most, so nothing
// is lost before the truncation.
InkValue Mix(__m128i lower, __m128i third, __m128i upper, const SquareShares& shares, uint32_t redFraction) {
    __m128i pair = Weighted(lower, shares.lower);
    pair = _mm_add_epi16(pair, Weighted(third, shares.third));
    pair = _mm_add_epi16(pair, Weighted(upper, shares.upper));
    pair = Weighted(pair, kRedShares[redFraction]);
    const __m128i inks = _mm_srli_epi16(_mm_add_epi16(pair, _mm_srli_si128(pair, 8)), 8);
    return static_cast<InkValue>(_mm_cvtsi128_si32(_mm_packus_epi16(inks, inks)));
}

// The grid values below and above a component.
struct GridCell {
    explicit GridCell(uint32_t value) : lower(value & 0xF0), upper(std::min(lower + 16, 255u)) {}
    uint32_t lower;
    uint32_t upper;
};

}  // namespace

bool InterpolateGridEntry(uint8_t blue, uint8_t green, uint8_t red, InkValue* entry, const InkValue* table) {
    const GridCell b(blue), g(green), r(red);
    const auto corner = [&](uint32_t greenValue, uint32_t blueValue) {
        const auto inkAt = [&](uint32_t redValue) {
            return _mm_cvtsi32_si128(static_cast<int>(table[ColorIndex(redValue, greenValue, blueValue)]));
        };
        return Widened(_mm_unpacklo_epi32(inkAt(r.lower), inkAt(r.upper)));
    };
    const SquareShares& shares = SharesOf(ColorIndex(red, green, blue));
    *entry =
        Mix(corner(g.lower, b.lower), shares.blueLeads ? corner(g.lower, b.upper) : corner(g.upper, b.lower),
            corner(g.upper, b.upper), shares, red & 0x0Fu);
    return true;
}

bool GridCopy::Take(const InkValue* table) {
    bool whole = true;
    for (int red = 0; red < kGridSteps; ++red) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int blue = 0; blue < kGridSteps; ++blue) {
                const InkValue inks = table[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))];
                whole = whole && inks != kNotComputed;
                if (red < kGridSteps - 1) pairs_[GridIndex(red, green, blue)].inks[0] = inks;
                if (red > 0) pairs_[GridIndex(red - 1, green, blue)].inks[1] = inks;
            }
        }
    }
    return whole;
}

InkValue GridCopy::Interpolate(uint32_t pixel) const {
    const auto step = [pixel](int shift) { return static_cast<int>(pixel >> shift & 0x0F); };
    const Pair* lower = pairs_ + GridIndex(step(20), step(12), step(4));
    const auto load = [](const Pair* pair) {
        return Widened(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pair)));
    };
    const SquareShares& shares = SharesOf(pixel);
    return Mix(load(lower), load(lower + (shares.blueLeads ? 1 : kGridSteps)), load(lower + kGridSteps + 1),
               shares, pixel >> 16 & 0x0F);
}

}  // namespace orvex
