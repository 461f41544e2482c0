// Plain definition of printed rows: each pixel is looked up by itself, in order, in a table of the test's
// own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/plain/plain_colors.h"

namespace orvex::plain {

struct RowOptions {
    int32_t kws = 0;
    uint32_t lightPattern = 0;
    uint32_t grayMode = 0;
};

inline uint32_t GrayWeight(uint32_t ink) {
    const double k = InkByte(ink, 0), c = InkByte(ink, 1), m = InkByte(ink, 2), y = InkByte(ink, 3);
    const double sum = (m + k) * 0.587 + (c + k) * 0.299 + (y + k) * 0.114;
    return sum > 255 ? 255 : static_cast<uint32_t>(sum);
}

// Returns what a pixel of ink value `ink` prints at its place in the row.
inline uint32_t Print(uint32_t ink, size_t place, RowOptions options) {
    if (ink == 0 && options.kws != 0) return (options.lightPattern != 0 ? 2u : 4u) << 8 * (place % 4);
    if (ink == 0) return 0;
    if (options.grayMode == 2) return GrayWeight(ink);
    if (options.grayMode != 1) return ink;
    const uint8_t t = static_cast<uint8_t>(GrayWeight(ink) * 0.67);
    const uint8_t c = static_cast<uint8_t>(t * 0.8);
    return Ink(0, c, t, t);
}

// Returns the ink value of a pixel in a table of a kind. A missing entry is computed and stored.
inline uint32_t Lookup(uint32_t pixel, int32_t kind, uint32_t* table) {
    const uint32_t color = pixel & 0xFFFFFF;
    if (table[color] != 0xFFFFFFFF) return table[color];
    if (kind == 3 || kind == 4) table[color] = HalfGridAverage(color, table);
    if (kind == 5) table[color] = Prism(color, table);
    return table[color];
}

// Returns what a row of pixels prints.
inline std::vector<uint32_t> PrintRow(const std::vector<uint32_t>& pixels, RowOptions options, int32_t kind,
                                      uint32_t* table) {
    std::vector<uint32_t> printed;
    printed.reserve(pixels.size());
    for (const uint32_t pixel : pixels) {
        printed.push_back(Print(Lookup(pixel, kind, table), printed.size(), options));
    }
    return printed;
}

// Neighboring colors in a table that is filled in part, and the entries that it must store for them. While
// such an entry is missing, inks depend on the order of the look-ups.
struct Neighborhood {
    explicit Neighborhood(int32_t kindOfTable)
        : kind(kindOfTable),
          components(kind == 5 ? std::array{0xE8u, 0xF0u, 0xF8u, 0xFFu}
                               : std::array{0x12u, 0xFDu, 0xFEu, 0xFFu}),
          storedComponents(kind == 5 ? std::array{0xE0u, 0xF0u, 0xFFu} : std::array{0x12u, 0xFCu, 0xFEu}) {}

    static constexpr uint32_t kColors = 64;
    static constexpr uint32_t kStored = 27;

    uint32_t Color(uint32_t i) const {
        return ColorIndex(components[i / 16 % 4], components[i / 4 % 4], components[i % 4]);
    }
    uint32_t StoredColor(uint32_t i) const {
        return ColorIndex(storedComponents[i / 9 % 3], storedComponents[i / 3 % 3], storedComponents[i % 3]);
    }

    // Fills these entries of a table: stored entry i is missing when bit i of `missing` is set.
    template <typename InkOf>
    void Fill(uint32_t missing, InkOf inkOf, uint32_t* table) const {
        for (uint32_t i = 0; i < kColors; ++i) table[Color(i)] = kind == 3 ? 0 : 0xFFFFFFFF;
        for (uint32_t i = 0; i < kStored; ++i) {
            const uint32_t color = StoredColor(i);
            table[color] = missing >> i & 1 ? 0xFFFFFFFF : inkOf(color);
        }
    }

    int32_t kind;  // 3 to 5
    std::array<uint32_t, 4> components;
    std::array<uint32_t, 3> storedComponents;
};

}  // namespace orvex::plain
