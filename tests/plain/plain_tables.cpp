#include "tests/plain/plain_tables.h"

#include "tests/plain/plain_colors.h"

namespace orvex::plain {

const Table& GenericTable(int percent) {
    static Table half, full;
    Table& table = percent == 50 ? half : full;
    if (table.empty()) {
        table.reserve(kCacheEntries);
        for (uint32_t color = 0; color < kCacheEntries; ++color) table.push_back(Generic(color, percent));
    }
    return table;
}

Table PrismTable(const uint32_t* cache) {
    const Grid grid(cache);
    Table table(kCacheEntries);
    // All cells share the weights of a place in the cell, so they are computed once for each place.
    for (uint32_t place = 0; place < 16 * 16 * 16; ++place) {
        const uint32_t inCell = ColorIndex(place >> 8, place >> 4 & 15, place & 15);
        const auto weights = PrismWeights(Blue(inCell), Green(inCell), Red(inCell));
        for (uint32_t cell = 0; cell < 16 * 16 * 16; ++cell) {
            const uint32_t color = inCell + 16 * ColorIndex(cell >> 8, cell >> 4 & 15, cell & 15);
            table[color] = Prism(color, weights, grid);
        }
    }
    return table;
}

Table HalfGridTable(const uint32_t* cache) {
    Table table(kCacheEntries);
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        table[color] = IsAllEven(color) ? cache[color] : HalfGridAverage(color, cache);
    }
    return table;
}

}  // namespace orvex::plain
