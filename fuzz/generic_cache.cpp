#include "fuzz/generic_cache.h"

#include <algorithm>

#include "tests/plain/plain_colors.h"

namespace orvex::fuzz {

namespace {

// Each ink depends on the color's largest component and on the one that the ink takes away: black on the
// former alone, yellow on the former and on blue, as all others on theirs.
struct PairTable {
    explicit PairTable(int percent) {
        for (uint32_t largest = 0; largest < 256; ++largest) {
            for (uint32_t component = 0; component <= largest; ++component) {
                const uint32_t inks = plain::Generic(ColorIndex(largest, largest, component), percent);
                black[largest] = plain::InkByte(inks, 0);
                ink[largest][component] = plain::InkByte(inks, 3);
            }
        }
    }
    uint32_t black[256];
    uint32_t ink[256][256] = {};
};

}  // namespace

bool IsGenericCache(const uint32_t* cache, int percent) {
    static const PairTable half(50), full(100);
    const PairTable& table = percent == 50 ? half : full;
    uint32_t different = 0;
    for (uint32_t red = 0; red < 256; ++red) {
        for (uint32_t green = 0; green < 256; ++green) {
            for (uint32_t blue = 0; blue < 256; ++blue) {
                const uint32_t largest = std::max({red, green, blue});
                const auto& ink = table.ink[largest];
                different |= *cache++ ^ plain::Ink(table.black[largest], ink[red], ink[green], ink[blue]);
            }
        }
    }
    return different == 0;
}

}  // namespace orvex::fuzz
