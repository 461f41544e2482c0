#include "driver/color/prism_interpolation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "driver/color/row_conversion.h"
#include "tests/driver/color/cache_filling.h"
#include "tests/plain/plain_colors.h"
#include "tests/plain/plain_tables.h"

namespace orvex {

namespace {

uint32_t Interpolated(uint32_t color) {
    uint32_t entry = 0;
    EXPECT_TRUE(InterpolateGridEntry(static_cast<uint8_t>(plain::Blue(color)),
                                     static_cast<uint8_t>(plain::Green(color)),
                                     static_cast<uint8_t>(plain::Red(color)), &entry, g_colorCache));
    return entry;
}

// Returns inks among which no grid point is missing.
uint32_t HalfInk(uint32_t color) {
    return plain::Scramble(color) & 0x7F7F7F7F;
}

// Returns inks that are either absent or full.
uint32_t Extreme(uint32_t color) {
    const uint32_t bits = plain::Scramble(color, 7);
    return (bits & 1) * 0xFFu | (bits >> 1 & 1) * 0xFF00u | (bits >> 2 & 1) * 0xFF0000u |
           (bits >> 3 & 1) * 0xFF000000u;
}

// Compares the interpolation of all 2^24 colors with the plain one, both from the table and in printed rows.
void ExpectPlainPrismEverywhere() {
    constexpr uint32_t kRow = 4096;
    const plain::Table want = plain::PrismTable(g_colorCache);
    std::vector<uint32_t> row(kRow), inks(kRow);
    for (uint32_t first = 0; first < kCacheEntries; first += kRow) {
        std::iota(row.begin(), row.end(), first);
        for (uint32_t i = 0; i < kRow; ++i) {
            const uint32_t color = first + i;
            const uint32_t stored = g_colorCache[color];
            uint32_t have = 0;
            InterpolateGridEntry(static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                                 static_cast<uint8_t>(color >> 16), &have, g_colorCache);
            ASSERT_TRUE(have == want[color])
                << std::hex << "color 0x" << color << " has ink 0x" << have << ", not 0x" << want[color];
            inks[i] = stored == kNotComputed ? have : stored;
        }
        std::vector<uint32_t> printed(kRow);
        ConvertRow(printed.data(), row.data(), kRow, 1, 0, 0, kColorModeColor);
        ASSERT_TRUE(printed == inks) << std::hex << "the row of color 0x" << first;
    }
}

// Looks colors up in turn, and compares each with the plain interpolation from the table at that moment.
void ExpectPlainPrismInTurn(const std::vector<uint32_t>& colors) {
    std::vector<uint32_t> table(g_colorCache, g_colorCache + kCacheEntries);
    for (const uint32_t color : colors) {
        uint32_t& entry = table[color];
        if (entry == kNotComputed) entry = plain::Prism(color, table.data());
        ASSERT_EQ(LookupColor(color), entry) << std::hex << "color 0x" << color;
    }
    EXPECT_TRUE(HoldsTable(table));
}

}  // namespace

TEST(PrismInterpolation, EqualsTheMatrixFormForEveryColorOfRandomAndExtremeInks) {
    FillGrid(
        [](uint32_t color) { return (plain::Scrambled(color) & 0xFFFF0000) | (Extreme(color) & 0xFFFF); });
    ExpectPlainPrismEverywhere();
}

TEST(PrismInterpolation, EqualsTheMatrixFormForEveryColorOfExtremeRandomAndSmoothInks) {
    FillGrid([](uint32_t color) {
        return (Extreme(color) & 0xFFFF0000) | (plain::Scrambled(color) & 0xFF00) |
               (plain::Smooth(color) & 0xFF);
    });
    ExpectPlainPrismEverywhere();
}

TEST(PrismInterpolation, LeavesWhiteASixteenthShortOfTheWhiteGridPoint) {
    FillGrid([](uint32_t color) { return color == 0xFFFFFF ? 0u : 0x00000064u; });
    // 100 of K at seven corners, none at the eighth: 100 * (1 - 0.9375 * 0.9375) = 12.1.
    EXPECT_EQ(Interpolated(0xFFFFFF), 12u);
    EXPECT_EQ(Interpolated(0xFFFFFF), plain::Prism(0xFFFFFF, g_colorCache));
}

TEST(PrismInterpolation, TakesTheGreenSideWhenBlueAndGreenAreEquallyFar) {
    // Only the two corners that the sides don't share have ink: blue's is cyan, green's magenta.
    FillGrid([](uint32_t color) {
        return color == 0x000010 ? 0x0000FF00u : color == 0x001000 ? 0x00FF0000u : 0u;
    });
    EXPECT_EQ(Interpolated(0x000808), 0u);
    EXPECT_EQ(Interpolated(0x000809), 0x00000F00u);  // 255 / 16
    EXPECT_EQ(Interpolated(0x000908), 0x000F0000u);
}

TEST(PrismInterpolation, IsTheLowerCornerItselfAtMultiplesOf16) {
    FillGrid(plain::Scrambled);
    for (const uint32_t color : {0x000000u, 0x102030u, 0xF0F0F0u, 0x00F000u}) {
        EXPECT_EQ(Interpolated(color), plain::Scrambled(color));
        EXPECT_EQ(LookupColor(color), plain::Scrambled(color));
    }
}

TEST(PrismInterpolation, DropsFractionsOfAnAmount) {
    FillGrid([](uint32_t color) { return color == 0x100000 ? 0x01010101u : 0u; });
    EXPECT_EQ(Interpolated(0x0F0000), 0u);
    FillGrid([](uint32_t color) { return color == 0x000000 ? 0x00000000u : 0xFEFEFEFEu; });
    EXPECT_EQ(Interpolated(0x010000), 0x0F0F0F0Fu);  // 254 / 16 = 15.9
}

TEST(PrismInterpolation, ReadsMissingGridPointsFromTheTableAtThatMoment) {
    std::mt19937 random(1);
    std::vector<uint32_t> colors(3000);
    for (uint32_t& color : colors) color = static_cast<uint32_t>(random()) & kColorBits;
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        if (plain::IsGridPoint(color)) colors.push_back(color);
    }
    std::shuffle(colors.begin(), colors.end(), random);
    for (int order = 0; order < 2; ++order) {
        FillGrid(Extreme);  // every sixteenth point has all inks full, and so counts as missing
        ExpectPlainPrismInTurn(colors);
        std::reverse(colors.begin(), colors.end());
    }
}

TEST(GridCopy, IsRefusedWhenAnyPointIsMissing) {
    const auto copy = std::make_unique<GridCopy>();
    FillGrid(HalfInk);
    EXPECT_TRUE(copy->Take(g_colorCache));
    for (const uint32_t color : {0x000000u, 0x1020FFu, 0xFF0000u, 0xFFFFFFu}) {
        FillGrid(HalfInk);
        g_colorCache[color] = kNotComputed;
        EXPECT_FALSE(copy->Take(g_colorCache)) << std::hex << color;
    }
}

TEST(GridCopy, IsTakenAgainWithEachKind) {
    FillGrid(HalfInk);
    EXPECT_EQ(LookupColor(0x010203), plain::Prism(0x010203, g_colorCache));
    FillGrid(plain::Scrambled);
    EXPECT_EQ(LookupColor(0x010203), plain::Prism(0x010203, g_colorCache));
    SetCacheKind(kPlanes);
    EXPECT_EQ(LookupColor(0x010204), kNotComputed);
}

}  // namespace orvex
