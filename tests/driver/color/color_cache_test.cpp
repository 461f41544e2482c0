#include "driver/color/color_cache.h"

#include <gtest/gtest.h>

#include "tests/driver/color/cache_filling.h"
#include "tests/plain/plain_colors.h"
#include "tests/plain/plain_tables.h"

namespace orvex {

TEST(ColorCache, GridValuesAreMultiplesOf16And255) {
    EXPECT_EQ(GridValue(0), 0u);
    EXPECT_EQ(GridValue(1), 16u);
    EXPECT_EQ(GridValue(15), 240u);
    EXPECT_EQ(GridValue(16), 255u);
}

TEST(LookupOfKind5, ReturnsStoredEntriesWithComponentsOf255AsStored) {
    FillGrid(plain::Scrambled);
    for (const uint32_t color : {0xFFFFFFu, 0xFF0000u, 0x00FF10u, 0x0000FFu}) {
        EXPECT_EQ(LookupColor(color), plain::Scrambled(color));
        EXPECT_NE(plain::Prism(color, g_colorCache), plain::Scrambled(color));
    }
}

TEST(LookupOfKind5, ComputesAMissingEntryOnceAndKeepsIt) {
    FillGrid(plain::Scrambled);
    const uint32_t want = plain::Prism(0x123456, g_colorCache);
    EXPECT_EQ(g_colorCache[0x123456], kNotComputed);
    EXPECT_EQ(LookupColor(0x123456), want);
    EXPECT_EQ(g_colorCache[0x123456], want);
    g_colorCache[0x123456] = 0x01020304;
    EXPECT_EQ(LookupColor(0x123456), 0x01020304u);
}

TEST(LookupOfKind5, ChangesNoOtherEntry) {
    FillGrid(plain::Scrambled);
    LookupColor(0x7F0301);
    EXPECT_TRUE(SameForEveryColor(StoredEntry, [](uint32_t color) {
        if (color == 0x7F0301) return plain::Prism(color, g_colorCache);
        return plain::IsGridPoint(color) ? plain::Scrambled(color) : kNotComputed;
    }));
}

TEST(Lookup, IgnoresThePixelsTopByte) {
    FillGrid(plain::Scrambled);
    const uint32_t want = plain::Prism(0x123456, g_colorCache);
    EXPECT_EQ(LookupColor(0xFF123456), want);
    EXPECT_EQ(LookupColor(0x80123456), want);
    EXPECT_EQ(LookupColor(0x00123456), want);
}

TEST(LookupOfOtherKinds, ComputesNothing) {
    for (const int32_t kind : {1, 2, 0, -1, 6, 255, INT32_MIN, INT32_MAX}) {
        FillGrid(plain::Scrambled);
        SetCacheKind(kind);
        EXPECT_EQ(LookupColor(0x123456), kNotComputed) << kind;
        EXPECT_EQ(g_colorCache[0x123456], kNotComputed) << kind;
        EXPECT_EQ(LookupColor(0x102030), plain::Scrambled(0x102030)) << kind;
    }
}

TEST(LookupOfKind3, GivesNoInkToColorsWithAnOddComponent) {
    FillCache(kHalfGridEntries, 0, plain::IsAllEven,
              [](uint32_t color) { return plain::Scramble(color) | 1; });
    EXPECT_EQ(LookupColor(0x000001), 0u);
    EXPECT_EQ(LookupColor(0x7B0246), 0u);
    EXPECT_EQ(LookupColor(0xFFFFFF), 0u);
    EXPECT_EQ(LookupColor(0x7A0246), plain::Scramble(0x7A0246) | 1);
}

TEST(LookupOfKind3, AveragesASentinelThatAProfilePutThere) {
    FillCache(kHalfGridEntries, 0, plain::IsAllEven, plain::Smooth);
    g_colorCache[0x112233] = kNotComputed;
    EXPECT_EQ(LookupColor(0x112233), plain::HalfGridAverage(0x112233, g_colorCache));
}

TEST(LookupOfKind4, EqualsThePlainAverageForEveryColor) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, plain::Scrambled);
    const plain::Table want = plain::HalfGridTable(g_colorCache);
    EXPECT_TRUE(SameForEveryColor(LookupColor, [&](uint32_t color) { return want[color]; }));
    EXPECT_TRUE(HoldsTable(want));
}

TEST(HalfGridAverage, TakesTheNeighborsOfTheByteReversedColor) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, [](uint32_t) { return 0u; });
    // Blue is odd, so its neighbors are 0 and 2 in the table's red byte: no ink, and black that leaves 127 of
    // 255.
    g_colorCache[0x020000] = 128;
    // (255 + 127) / 2 = 191, which the generic conversion turns into 64 of K.
    EXPECT_EQ(LookupColor(0x000001), 64u);
    EXPECT_EQ(LookupColor(0x010000), 0u);
}

TEST(HalfGridAverage, AveragesInksAsRedGreenAndBlueLight) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, [](uint32_t) { return 0u; });
    g_colorCache[0x000000] = plain::Ink(0, 255, 0, 0);
    g_colorCache[0x020000] = plain::Ink(0, 0, 255, 0);
    // (127, 127, 255) on average: half cyan and half magenta.
    EXPECT_EQ(LookupColor(0x000001), plain::Ink(0, 128, 128, 0));
}

TEST(HalfGridAverage, CopiesTheReversedEntryWhenNoComponentCountsAsOdd) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, plain::Scrambled);
    EXPECT_EQ(LookupColor(0xFF0000), plain::Scrambled(0x0000FE));
    EXPECT_EQ(LookupColor(0x10FF20), plain::Scrambled(0x20FE10));
    EXPECT_EQ(LookupColor(0xFFFFFF), plain::Scrambled(0xFEFEFE));
    uint32_t entry = 0;
    AverageHalfGridEntry(0x10, 0x20, 0x30, &entry);
    EXPECT_EQ(entry, plain::Scrambled(0x102030));
}

TEST(HalfGridAverage, Of255WithOddComponentsUsesItsBaseOnly) {
    FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, [](uint32_t) { return 0u; });
    g_colorCache[0xFE0000] = 255;
    g_colorCache[0xFE0200] = 255;
    // Blue 255 stays at 254, green 1 lies between 0 and 2; both neighbors are black.
    EXPECT_EQ(LookupColor(0x0001FF), 255u);
}

}  // namespace orvex
