#include "driver/color/generic_conversion.h"

#include <gtest/gtest.h>

#include "tests/driver/color/cache_filling.h"
#include "tests/plain/plain_colors.h"
#include "tests/plain/plain_tables.h"

namespace orvex {

namespace {

uint32_t OneByOne(uint32_t color, double inkScale) {
    return GenericInkConversion(static_cast<uint8_t>(plain::Red(color)),
                                static_cast<uint8_t>(plain::Green(color)),
                                static_cast<uint8_t>(plain::Blue(color)), inkScale);
}

}  // namespace

TEST(GenericConversion, ConvertsPrimaries) {
    EXPECT_EQ(GenericInkConversion(255, 255, 255, kFullInk), 0u);
    EXPECT_EQ(GenericInkConversion(0, 0, 0, kFullInk), plain::Ink(255, 0, 0, 0));
    EXPECT_EQ(GenericInkConversion(255, 0, 0, kFullInk), plain::Ink(0, 0, 255, 255));
    EXPECT_EQ(GenericInkConversion(0, 255, 0, kFullInk), plain::Ink(0, 255, 0, 255));
    EXPECT_EQ(GenericInkConversion(0, 0, 255, kFullInk), plain::Ink(0, 255, 255, 0));
    EXPECT_EQ(GenericInkConversion(128, 128, 128, kFullInk), plain::Ink(127, 0, 0, 0));
}

TEST(GenericConversion, HalvesEveryInkAtHalfScale) {
    EXPECT_EQ(GenericInkConversion(255, 255, 255, kHalfInk), 0u);
    EXPECT_EQ(GenericInkConversion(0, 0, 0, kHalfInk), plain::Ink(128, 0, 0, 0));
    EXPECT_EQ(GenericInkConversion(255, 0, 0, kHalfInk), plain::Ink(0, 0, 128, 128));
    EXPECT_EQ(GenericInkConversion(128, 64, 0, kHalfInk), plain::Ink(64, 0, 64, 128));
}

TEST(GenericConversion, NeverGivesTheSentinel) {
    FillWithGenericConversion(g_colorCache, kFullInk);
    EXPECT_EQ(std::find(g_colorCache, g_colorCache + kCacheEntries, kNotComputed),
              g_colorCache + kCacheEntries);
}

TEST(GenericConversion, EqualsThePlainDefinitionForEveryColor) {
    for (const int inkScale : {100, 50}) {
        const plain::Table& want = plain::GenericTable(inkScale);
        FillWithGenericConversion(g_colorCache, inkScale);
        EXPECT_TRUE(HoldsTable(want)) << inkScale;
        EXPECT_TRUE(SameForEveryColor([&](uint32_t color) { return OneByOne(color, inkScale); },
                                      [&](uint32_t color) { return want[color]; }))
            << inkScale;
    }
}

}  // namespace orvex
