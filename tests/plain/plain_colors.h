// Plain definitions of the conversions of colors, entry by entry and in double precision. Speed does not
// matter here.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "driver/color/color_cache.h"

namespace orvex::plain {

constexpr uint32_t Red(uint32_t color) {
    return color >> 16 & 0xFF;
}
constexpr uint32_t Green(uint32_t color) {
    return color >> 8 & 0xFF;
}
constexpr uint32_t Blue(uint32_t color) {
    return color & 0xFF;
}
constexpr uint32_t Ink(uint32_t k, uint32_t c, uint32_t m, uint32_t y) {
    return y << 24 | m << 16 | c << 8 | k;
}
constexpr uint32_t InkByte(uint32_t ink, int place) {
    return ink >> 8 * place & 0xFF;
}

constexpr bool IsGridValue(uint32_t component) {
    return component % 16 == 0 || component == 255;
}
constexpr bool IsGridPoint(uint32_t color) {
    return IsGridValue(Red(color)) && IsGridValue(Green(color)) && IsGridValue(Blue(color));
}
constexpr bool IsAllEven(uint32_t color) {
    return (color & 0x010101) == 0;
}

// Returns bits without a pattern for an index and a seed.
constexpr uint32_t Scramble(uint32_t index, uint32_t seed = 0) {
    uint32_t x = index * 0x9E3779B1u + seed * 0x85EBCA77u + 0x165667B1u;
    x = (x ^ x >> 15) * 0x2C1B3C6Du;
    x = (x ^ x >> 12) * 0x297A2D39u;
    return x ^ x >> 15;
}

// Returns the ink of a profile without steps: each ink follows the light that it absorbs.
constexpr uint32_t Smooth(uint32_t color) {
    const uint32_t red = Red(color), green = Green(color), blue = Blue(color);
    return Ink(255 - std::max({red, green, blue}), 255 - red, 255 - green, 255 - blue);
}
// Returns the ink of a profile of nothing but steps.
constexpr uint32_t Scrambled(uint32_t color) {
    return Scramble(color);
}

// Returns the generic conversion of a color at `percent` of ink.
inline uint32_t Generic(uint32_t color, double percent) {
    const double range = percent * 255 / 100;
    const double r = Red(color) / 255.0, g = Green(color) / 255.0, b = Blue(color) / 255.0;
    const double m = std::max(std::max(r, g), b);
    const uint32_t k = static_cast<uint32_t>((1 - m) * range + 0.5);
    if (m == 0) return k;
    const double q = m / range;
    return Ink(k, static_cast<uint32_t>((m - r) / q + 0.5), static_cast<uint32_t>((m - g) / q + 0.5),
               static_cast<uint32_t>((m - b) / q + 0.5));
}

// Returns the half-grid average of a color from `table`, which has an ink for every color.
template <typename Table>
uint32_t HalfGridAverage(uint32_t color, const Table& table) {
    // The neighbors' high byte comes from the color's low one.
    const uint32_t p[3] = {Blue(color), Green(color), Red(color)};
    bool odd[3];
    int count = 0;
    for (int i = 0; i < 3; ++i) count += odd[i] = p[i] % 2 == 1 && p[i] != 255;
    uint32_t red = 0, green = 0, blue = 0;
    for (uint32_t u0 = 0; u0 <= odd[0]; ++u0) {
        for (uint32_t u1 = 0; u1 <= odd[1]; ++u1) {
            for (uint32_t u2 = 0; u2 <= odd[2]; ++u2) {
                const uint32_t q0 = (p[0] & 0xFE) + 2 * u0, q1 = (p[1] & 0xFE) + 2 * u1,
                               q2 = (p[2] & 0xFE) + 2 * u2;
                const uint32_t entry = table[q0 << 16 | q1 << 8 | q2];
                if (count == 0) return entry;
                const double k = 1 - InkByte(entry, 0) / 255.0;
                red += static_cast<uint8_t>((1 - InkByte(entry, 1) / 255.0) * 255 * k);
                green += static_cast<uint8_t>((1 - InkByte(entry, 2) / 255.0) * 255 * k);
                blue += static_cast<uint8_t>((1 - InkByte(entry, 3) / 255.0) * 255 * k);
            }
        }
    }
    return Generic(ColorIndex(red >> count, green >> count, blue >> count), 100);
}

// Returns the weights of the eight corners in the prism interpolation, for a place inside a grid cell.
inline std::array<double, 8> PrismWeights(uint32_t blue, uint32_t green, uint32_t red) {
    static constexpr double kBlueLeads[6][8] = {
        {1, 0, 0, 0, 0, 0, 0, 0},    // 1
        {-1, 0, 0, 0, 1, 0, 0, 0},   // fx
        {0, 0, 0, 0, -1, 0, 1, 0},   // fy
        {-1, 1, 0, 0, 0, 0, 0, 0},   // fz
        {1, -1, 0, 0, -1, 1, 0, 0},  // fz fx
        {0, 0, 0, 0, 1, -1, -1, 1},  // fz fy
    };
    static constexpr double kOtherwise[6][8] = {
        {1, 0, 0, 0, 0, 0, 0, 0},    //
        {0, 0, -1, 0, 0, 0, 1, 0},   //
        {-1, 0, 1, 0, 0, 0, 0, 0},   //
        {-1, 1, 0, 0, 0, 0, 0, 0},   //
        {0, 0, 1, -1, 0, 0, -1, 1},  //
        {1, -1, -1, 1, 0, 0, 0, 0},  //
    };
    const double fx = (blue & 15) * 0.0625, fy = (green & 15) * 0.0625, fz = (red & 15) * 0.0625;
    const double basis[6] = {1, fx, fy, fz, fz * fx, fz * fy};
    const auto& matrix = fx > fy ? kBlueLeads : kOtherwise;
    std::array<double, 8> weights{};
    for (int corner = 0; corner < 8; ++corner) {
        for (int term = 0; term < 6; ++term) weights[corner] += basis[term] * matrix[term][corner];
    }
    return weights;
}

// The grid points of a table, four ink amounts each.
class Grid {
  public:
    explicit Grid(const uint32_t* table) {
        for (int point = 0; point < kGridPoints; ++point) {
            const uint32_t ink =
                table[ColorIndex(GridValue(point / (kGridSteps * kGridSteps)),
                                 GridValue(point / kGridSteps % kGridSteps), GridValue(point % kGridSteps))];
            for (int place = 0; place < 4; ++place) amounts_[4 * point + place] = InkByte(ink, place);
        }
    }
    const double* At(uint32_t redStep, uint32_t greenStep, uint32_t blueStep) const {
        return amounts_ + size_t{4} * ((redStep * kGridSteps + greenStep) * kGridSteps + blueStep);
    }

  private:
    double amounts_[4 * kGridPoints];
};

// Returns the prism interpolation of a color by the weights of its place in its cell.
inline uint32_t Prism(uint32_t color, const std::array<double, 8>& weights, const Grid& grid) {
    const uint32_t red = Red(color) / 16, green = Green(color) / 16, blue = Blue(color) / 16;
    double k = 0, c = 0, m = 0, y = 0;
    for (uint32_t corner = 0; corner < 8; ++corner) {
        const double* amounts = grid.At(red + (corner & 1), green + (corner >> 1 & 1), blue + (corner >> 2));
        k += weights[corner] * amounts[0];
        c += weights[corner] * amounts[1];
        m += weights[corner] * amounts[2];
        y += weights[corner] * amounts[3];
    }
    return Ink(static_cast<uint8_t>(k), static_cast<uint8_t>(c), static_cast<uint8_t>(m),
               static_cast<uint8_t>(y));
}

// Returns the prism interpolation of a color from `table`, which has an ink for every color.
template <typename Table>
uint32_t Prism(uint32_t color, const Table& table) {
    const auto gridValue = [](uint32_t component, bool upper) {
        const uint32_t lower = component & 0xF0;
        return !upper ? lower : lower < 240 ? lower + 16 : 255;
    };
    const std::array<double, 8> weights = PrismWeights(Blue(color), Green(color), Red(color));
    uint32_t ink = 0;
    for (int place = 0; place < 4; ++place) {
        double sum = 0;
        for (uint32_t corner = 0; corner < 8; ++corner) {
            const uint32_t entry =
                table[ColorIndex(gridValue(Red(color), corner & 1), gridValue(Green(color), corner >> 1 & 1),
                                 gridValue(Blue(color), corner >> 2))];
            sum += weights[corner] * InkByte(entry, place);
        }
        ink |= uint32_t{static_cast<uint8_t>(sum)} << 8 * place;
    }
    return ink;
}

}  // namespace orvex::plain
