// Fills the color cache for a test, and compares all of it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ios>
#include <vector>

#include "driver/color/color_cache.h"

namespace orvex {

// Stores inkOf(color) at every color for which isStored(color) is true, and `others` everywhere else.
template <typename IsStored, typename InkOf>
void FillCache(int32_t kind, uint32_t others, IsStored isStored, InkOf inkOf) {
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        g_colorCache[color] = isStored(color) ? inkOf(color) : others;
    }
    SetCacheKind(kind);
}

// Stores inkOf(color) at the 4,913 grid points and leaves the other entries.
template <typename InkOf>
void FillGridPoints(InkOf inkOf) {
    for (int red = 0; red < kGridSteps; ++red) {
        for (int green = 0; green < kGridSteps; ++green) {
            for (int blue = 0; blue < kGridSteps; ++blue) {
                const uint32_t color = ColorIndex(GridValue(red), GridValue(green), GridValue(blue));
                g_colorCache[color] = inkOf(color);
            }
        }
    }
}

// Stores inkOf(color) at the grid points and the sentinel everywhere else.
template <typename InkOf>
void FillGrid(InkOf inkOf) {
    std::fill_n(g_colorCache, kCacheEntries, kNotComputed);
    FillGridPoints(inkOf);
    SetCacheKind(kGrid);
}

// Succeeds when actual(color) is expected(color) for each of the 2^24 colors; names the first that differs.
template <typename Actual, typename Expected>
testing::AssertionResult SameForEveryColor(Actual actual, Expected expected) {
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        const uint32_t have = actual(color), want = expected(color);
        if (have != want) {
            return testing::AssertionFailure()
                   << std::hex << "color 0x" << color << " has ink 0x" << have << ", not 0x" << want;
        }
    }
    return testing::AssertionSuccess();
}

inline uint32_t StoredEntry(uint32_t color) {
    return g_colorCache[color];
}

// Succeeds when the cache equals `want`; names the first color that differs.
inline testing::AssertionResult HoldsTable(const std::vector<uint32_t>& want) {
    if (want.size() == kCacheEntries && memcmp(g_colorCache, want.data(), sizeof g_colorCache) == 0) {
        return testing::AssertionSuccess();
    }
    return SameForEveryColor(StoredEntry, [&](uint32_t color) { return want.at(color); });
}

}  // namespace orvex
