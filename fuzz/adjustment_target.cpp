// The color adjustment: any values with any scales move any grid as the plain definition does, missing points
// included, and leave nothing in the color table but the grid.

#include <bit>
#include <limits>

#include "driver/color/color_adjustment.h"
#include "driver/color/color_cache.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/plain/long_hand_adjustment.h"
#include "tests/plain/plain_colors.h"

namespace orvex::fuzz {

namespace {

uint32_t GridColor(int point) {
    return ColorIndex(GridValue(point / 289), GridValue(point / 17 % 17), GridValue(point % 17));
}

// Reads a scale: one of a list, or any double.
double ScaleOf(FuzzInput& input, double usual) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const double scales[] = {usual, 1, -1, 0, -0.0, 1e308, 5e-324, kInfinity, -kInfinity, usual / 10, -usual};
    const uint8_t choice = input.Byte();
    return choice < std::size(scales) ? scales[choice] : std::bit_cast<double>(input.Number<uint64_t>());
}

AdjustmentScales ScalesOf(FuzzInput& input) {
    AdjustmentScales scales;
    for (double* scale : {&scales.tone, &scales.saturation, &scales.brightness, &scales.black, &scales.yellow,
                          &scales.cyan, &scales.magenta}) {
        *scale = ScaleOf(input, *scale);
    }
    return scales;
}

// Makes a grid with steps or without, with points missing here and there, and with inks at points of the
// input's choice.
std::vector<uint32_t> GridOf(FuzzInput& input) {
    const bool smooth = input.Flag();
    const auto seed = input.Number<uint16_t>();
    const uint8_t apart = input.Byte();  // points from one that is missing to the next; 0: none is missing
    std::vector<uint32_t> grid;
    for (int point = 0; point < kGridPoints; ++point) {
        const uint32_t color = GridColor(point);
        const bool missing = apart != 0 && (point + seed) % apart == 0;
        grid.push_back(missing ? kNotComputed : smooth ? plain::Smooth(color) : plain::Scramble(color, seed));
    }
    while (!input.Empty()) {
        const size_t point = input.Number<uint16_t>() % grid.size();
        grid[point] = input.Number<uint32_t>();
    }
    return grid;
}

// Requires that colors all over the table have no ink if they are not of the grid.
void CheckTheRestIsMissing(uint32_t seed) {
    for (uint32_t i = 0; i < 5000; ++i) {
        const uint32_t color = plain::Scramble(i, seed) & kColorBits;
        REQUIRE(plain::IsGridPoint(color) || g_colorCache[color] == kNotComputed);
    }
}

}  // namespace

void FuzzAdjustment(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    plain::Adjustment values;
    const auto value = [&] { return choices.Number<int8_t>(); };
    values = {value(), value(), value(), value(), value(), value(), value()};
    const AdjustmentScales scales = ScalesOf(choices);
    const std::vector<uint32_t> grid = GridOf(choices);
    for (int point = 0; point < kGridPoints; ++point) {
        g_colorCache[GridColor(point)] = grid[static_cast<size_t>(point)];
    }
    SetCacheKind(kPlanes);

    AdjustColors({values.brightness, values.saturation, values.tone, values.cyan, values.magenta,
                  values.yellow, values.black},
                 scales);
    REQUIRE(g_cacheKind == kGrid);
    const std::vector<uint32_t> expected = plain::AdjustedGrid(grid, values, scales);
    for (int point = 0; point < kGridPoints; ++point) {
        REQUIRE(g_colorCache[GridColor(point)] == expected[static_cast<size_t>(point)]);
    }
    CheckTheRestIsMissing(static_cast<uint32_t>(input.size()));
}

Seeds AdjustmentSeeds() {
    // Seven values, seven choices of a scale, the kind of the grid with its seed and its missing points, and
    // points of their own.
    const std::string usualScales(7, '\0');
    const std::string own("\x30\x13\xFF\xFF\xFF\xFF\x01\0\x01\x02\x03\x04", 12);
    return {
        std::string("\x0A\x14\x1E\x28\x32\x3C\x46", 7) + usualScales + std::string("\1\0\0\0", 4),
        std::string("\x9C\x9C\x9C\x9C\x9C\x9C\x9C", 7) + usualScales + std::string("\0\7\0\3", 4) + own,
        std::string("\x7F\x80\x7F\x80\x7F\x80\x7F", 7) + std::string("\1\2\3\4\5\6\7", 7) +
            std::string("\0\1\0\0", 4),
        std::string("\x00\xEC\x00\x1E\x00\x00\x05", 7) + std::string("\7\x08\x09\x0A\3\3\3", 7) +
            std::string("\1\2\0\1", 4),
        std::string(7, '\1') + '\xFF' + std::string("\0\0\0\0\0\0\xF8\x7F", 8) + std::string(6, '\0') +
            std::string("\0\x05\0\x11", 4) + own,
    };
}

}  // namespace orvex::fuzz
