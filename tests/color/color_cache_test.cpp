#include "color/color_cache.h"

#include <gtest/gtest.h>

#include "tests/color/cache_filling.h"
#include "tests/color/plain_colors.h"
#include "tests/color/plain_tables.h"

namespace {

uint32_t Interpolated(uint32_t color) {
    uint32_t entry = 0;
    EXPECT_TRUE(InterpolateGridEntry(static_cast<uint8_t>(plain::Blue(color)),
                                     static_cast<uint8_t>(plain::Green(color)),
                                     static_cast<uint8_t>(plain::Red(color)), &entry, g_colorCache));
    return entry;
}

// A profile without steps: each ink follows the light that it takes.
uint32_t Smooth(uint32_t color) {
    const uint32_t red = plain::Red(color), green = plain::Green(color), blue = plain::Blue(color);
    return plain::Ink(255 - std::max({red, green, blue}), 255 - red, 255 - green, 255 - blue);
}

uint32_t Scrambled(uint32_t color) {
    return plain::Scramble(color);
}

// Every ink either absent or full.
uint32_t Extreme(uint32_t color) {
    const uint32_t bits = plain::Scramble(color, 7);
    return (bits & 1) * 0xFFu | (bits >> 1 & 1) * 0xFF00u | (bits >> 2 & 1) * 0xFF0000u |
           (bits >> 3 & 1) * 0xFF000000u;
}

// Compares the interpolation of all 2^24 colours with the plain one.
void ExpectPlainPrismEverywhere() {
    const plain::Table want = plain::PrismTable(g_colorCache);
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        uint32_t have = 0;
        InterpolateGridEntry(static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                             static_cast<uint8_t>(color >> 16), &have, g_colorCache);
        ASSERT_TRUE(have == want[color])
            << std::hex << "colour 0x" << color << " has ink 0x" << have << ", not 0x" << want[color];
    }
}

}  // namespace

TEST(ColorCache, GridValuesAreMultiplesOf16And255) {
    EXPECT_EQ(GridValue(0), 0u);
    EXPECT_EQ(GridValue(1), 16u);
    EXPECT_EQ(GridValue(15), 240u);
    EXPECT_EQ(GridValue(16), 255u);
}

TEST(PrismInterpolation, EqualsTheMatrixFormForEveryColourOfRandomInksAboveExtremes) {
    FillGrid([](uint32_t color) { return (Scrambled(color) & 0xFFFF0000) | (Extreme(color) & 0xFFFF); });
    ExpectPlainPrismEverywhere();
}

TEST(PrismInterpolation, EqualsTheMatrixFormForEveryColourOfExtremesAboveSmoothAndRandomInks) {
    FillGrid([](uint32_t color) {
        return (Extreme(color) & 0xFFFF0000) | (Scrambled(color) & 0xFF00) | (Smooth(color) & 0xFF);
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
    // Only the two corners that the sides don't share hold ink: blue's in cyan, green's in magenta.
    FillGrid([](uint32_t color) {
        return color == 0x000010 ? 0x0000FF00u : color == 0x001000 ? 0x00FF0000u : 0u;
    });
    EXPECT_EQ(Interpolated(0x000808), 0u);
    EXPECT_EQ(Interpolated(0x000809), 0x00000F00u);  // 255 / 16
    EXPECT_EQ(Interpolated(0x000908), 0x000F0000u);
}

TEST(PrismInterpolation, IsTheLowerCornerItselfAtMultiplesOf16) {
    FillGrid(Scrambled);
    for (const uint32_t color : {0x000000u, 0x102030u, 0xF0F0F0u, 0x00F000u}) {
        EXPECT_EQ(Interpolated(color), Scrambled(color));
        EXPECT_EQ(LookupColor(color), Scrambled(color));
    }
}

TEST(PrismInterpolation, DropsFractionsOfAnAmount) {
    FillGrid([](uint32_t color) { return color == 0x100000 ? 0x01010101u : 0u; });
    EXPECT_EQ(Interpolated(0x0F0000), 0u);
    FillGrid([](uint32_t color) { return color == 0x000000 ? 0x00000000u : 0xFEFEFEFEu; });
    EXPECT_EQ(Interpolated(0x010000), 0x0F0F0F0Fu);  // 254 / 16 = 15.9
}

TEST(LookupOfKind5, ReturnsStoredEntriesWithComponentsOf255AsStored) {
    FillGrid(Scrambled);
    for (const uint32_t color : {0xFFFFFFu, 0xFF0000u, 0x00FF10u, 0x0000FFu}) {
        EXPECT_EQ(LookupColor(color), Scrambled(color));
        EXPECT_NE(Interpolated(color), Scrambled(color));
    }
}

TEST(LookupOfKind5, ComputesAMissingEntryOnceAndKeepsIt) {
    FillGrid(Scrambled);
    const uint32_t want = plain::Prism(0x123456, g_colorCache);
    EXPECT_EQ(g_colorCache[0x123456], kNotComputed);
    EXPECT_EQ(LookupColor(0x123456), want);
    EXPECT_EQ(g_colorCache[0x123456], want);
    g_colorCache[0x123456] = 0x01020304;
    EXPECT_EQ(LookupColor(0x123456), 0x01020304u);
}

TEST(LookupOfKind5, ChangesNoOtherEntry) {
    FillGrid(Scrambled);
    LookupColor(0x7F0301);
    EXPECT_TRUE(SameForEveryColor(StoredEntry, [](uint32_t color) {
        if (color == 0x7F0301) return plain::Prism(color, g_colorCache);
        return plain::IsGridPoint(color) ? Scrambled(color) : kNotComputed;
    }));
}

TEST(Lookup, IgnoresThePixelsTopByte) {
    FillGrid(Scrambled);
    const uint32_t want = plain::Prism(0x123456, g_colorCache);
    EXPECT_EQ(LookupColor(0xFF123456), want);
    EXPECT_EQ(LookupColor(0x80123456), want);
    EXPECT_EQ(LookupColor(0x00123456), want);
}

TEST(LookupOfOtherKinds, NeverComputesAnything) {
    for (const int32_t kind : {1, 2, 0, -1, 6, 255, INT32_MIN, INT32_MAX}) {
        FillGrid(Scrambled);
        g_cacheKind = kind;
        EXPECT_EQ(LookupColor(0x123456), kNotComputed) << kind;
        EXPECT_EQ(g_colorCache[0x123456], kNotComputed) << kind;
        EXPECT_EQ(LookupColor(0x102030), Scrambled(0x102030)) << kind;
    }
}

TEST(LookupOfKind3, LeavesColoursWithAnOddComponentWithoutInk) {
    FillCache(kHalfGridEntries, 0, plain::IsAllEven,
              [](uint32_t color) { return plain::Scramble(color) | 1; });
    EXPECT_EQ(LookupColor(0x000001), 0u);
    EXPECT_EQ(LookupColor(0x7B0246), 0u);
    EXPECT_EQ(LookupColor(0xFFFFFF), 0u);
    EXPECT_EQ(LookupColor(0x7A0246), plain::Scramble(0x7A0246) | 1);
}

TEST(LookupOfKind3, AveragesASentinelThatAProfilePutThere) {
    FillCache(kHalfGridEntries, 0, plain::IsAllEven, Smooth);
    g_colorCache[0x112233] = kNotComputed;
    EXPECT_EQ(LookupColor(0x112233), plain::HalfGridAverage(0x112233, g_colorCache));
}

TEST(LookupOfKind4, EqualsThePlainAverageForEveryColour) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, Scrambled);
    const plain::Table want = plain::HalfGridTable(g_colorCache);
    EXPECT_TRUE(SameForEveryColor(LookupColor, [&](uint32_t color) { return want[color]; }));
    EXPECT_TRUE(HoldsTable(want));
}

TEST(HalfGridAverage, TakesTheNeighboursOfTheByteReversedColour) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, [](uint32_t) { return 0u; });
    // Blue is odd, so its neighbours are 0 and 2 in the table's red byte: no ink, and black that leaves 127
    // of 255.
    g_colorCache[0x020000] = 128;
    // (255 + 127) / 2 = 191, which the generic conversion turns into 64 of K.
    EXPECT_EQ(LookupColor(0x000001), 64u);
    EXPECT_EQ(LookupColor(0x010000), 0u);
}

TEST(HalfGridAverage, GoesThroughRedGreenAndBlue) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, [](uint32_t) { return 0u; });
    g_colorCache[0x000000] = plain::Ink(0, 255, 0, 0);
    g_colorCache[0x020000] = plain::Ink(0, 0, 255, 0);
    // (127, 127, 255) on average: half cyan and half magenta.
    EXPECT_EQ(LookupColor(0x000001), plain::Ink(0, 128, 128, 0));
}

TEST(HalfGridAverage, CopiesTheReversedEntryWhenNoComponentCountsAsOdd) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, Scrambled);
    EXPECT_EQ(LookupColor(0xFF0000), Scrambled(0x0000FE));
    EXPECT_EQ(LookupColor(0x10FF20), Scrambled(0x20FE10));
    EXPECT_EQ(LookupColor(0xFFFFFF), Scrambled(0xFEFEFE));
    uint32_t entry = 0;
    AverageHalfGridEntry(0x10, 0x20, 0x30, &entry);
    EXPECT_EQ(entry, Scrambled(0x102030));
}

TEST(HalfGridAverage, Of255WithOddComponentsUsesItsBaseOnly) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, [](uint32_t) { return 0u; });
    g_colorCache[0xFE0000] = 255;
    g_colorCache[0xFE0200] = 255;
    // Blue 255 stays at 254, green 1 lies between 0 and 2; both neighbours are black.
    EXPECT_EQ(LookupColor(0x0001FF), 255u);
}
