#include "driver/color/row_conversion.h"

#include <gmock/gmock.h>

#include <array>
#include <numeric>
#include <vector>

#include "tests/driver/color/cache_filling.h"
#include "tests/plain/plain_rows.h"

namespace orvex {

using testing::ElementsAre;

namespace {

using plain::RowOptions;

constexpr uint32_t kUnwritten = 0xDEADBEEF;

std::vector<uint32_t> Convert(const std::vector<uint32_t>& pixels, RowOptions options = {}) {
    std::vector<uint32_t> inks(pixels.size() + 1, kUnwritten);
    EXPECT_EQ(ConvertRow(inks.data(), pixels.data(), static_cast<uint32_t>(pixels.size()), 1, options.kws,
                         options.lightPattern, options.grayMode),
              0);
    EXPECT_EQ(inks.back(), kUnwritten) << "a value past the row was written";
    inks.pop_back();
    return inks;
}

// Converts one pixel whose entry in the cache is `ink`.
uint32_t ConvertInk(uint32_t ink, RowOptions options) {
    SetCacheKind(kEntries);
    g_colorCache[0x123456] = ink;
    return Convert({0x123456}, options)[0];
}

// Returns a row of a few colors in runs of every small length and single pixels. Colors 0 to 2 print nothing.
std::vector<uint32_t> MixedRow(size_t length, uint32_t seed) {
    std::vector<uint32_t> row;
    while (row.size() < length) {
        const uint32_t bits = plain::Scramble(static_cast<uint32_t>(row.size()), seed);
        const uint32_t color = bits % 5 < 2 ? 0xFFFFFF : 0x40 * (bits >> 8 & 7) << (bits >> 12) % 17;
        row.insert(row.end(), 1 + (bits >> 20) % (bits >> 28 & 1 ? 23 : 3), color | bits << 24);
    }
    row.resize(length);
    return row;
}

// Returns the lengths of a few blocks with every remainder, and of rows long enough for entries to be fetched
// ahead.
std::vector<uint32_t> RowLengths() {
    std::vector<uint32_t> lengths(40);
    std::iota(lengths.begin(), lengths.end(), 1u);
    for (uint32_t length = 127; length <= 146; ++length) lengths.push_back(length);
    lengths.push_back(300);
    return lengths;
}

void FillForRows(int32_t kind) {
    const auto ink = [](uint32_t color) { return color == 0xFFFFFF ? 0 : plain::Scramble(color); };
    switch (kind) {
        case kHalfGridEntries:
            return FillCache(kind, 0, plain::IsAllEven, ink);
        case kHalfGridPlanes:
            return FillCache(kind, kNotComputed, plain::IsAllEven, ink);
        case kGrid:
            return FillGrid(ink);
        default:
            return FillCache(
                kind, 0, [](uint32_t) { return true; }, ink);
    }
}

}  // namespace

TEST(ConvertRow, OfNoPixelsWritesNothing) {
    uint32_t ink = kUnwritten;
    const uint32_t pixel = 0;
    EXPECT_EQ(ConvertRow(&ink, &pixel, 0, 1, 1, 1, 0), 0);
    EXPECT_EQ(ConvertRow(nullptr, nullptr, 0, 1, 0, 0, 1), 0);
    EXPECT_EQ(ink, kUnwritten);
}

TEST(ConvertRow, PutsTheLightPatternOnBlankPixels) {
    FillGrid([](uint32_t) { return 0u; });
    EXPECT_THAT(Convert(std::vector<uint32_t>(6, 0xFFFFFF), {.kws = 1, .lightPattern = 1}),
                ElementsAre(0x00000002, 0x00000200, 0x00020000, 0x02000000, 0x00000002, 0x00000200));
}

TEST(ConvertRow, PutsTheHeavyPatternOnBlankPixels) {
    FillGrid([](uint32_t) { return 0u; });
    EXPECT_THAT(Convert(std::vector<uint32_t>(6, 0xFFFFFF), {.kws = -1}),
                ElementsAre(0x00000004, 0x00000400, 0x00040000, 0x04000000, 0x00000004, 0x00000400));
}

TEST(ConvertRow, CountsThePatternByPixelsNotByBlankOnes) {
    FillForRows(kEntries);
    const uint32_t ink = plain::Scramble(0);
    EXPECT_THAT(Convert({0xFFFFFF, 0, 0xFFFFFF, 0, 0, 0xFFFFFF, 0xFFFFFF}, {.kws = 1, .lightPattern = 1}),
                ElementsAre(0x00000002, ink, 0x00020000, ink, ink, 0x00000200, 0x00020000));
}

TEST(ConvertRow, LeavesBlankPixelsBlankWithoutKws) {
    FillForRows(kEntries);
    for (const uint32_t grayMode : {0u, 1u, 2u, 3u}) {
        EXPECT_THAT(Convert({0xFFFFFF, 0, 0xFFFFFF}, {.lightPattern = 1, .grayMode = grayMode}),
                    ElementsAre(0, testing::Ne(0u), 0));
    }
}

TEST(ConvertRow, PutsThePatternNotTheGrayOnBlankPixels) {
    FillForRows(kEntries);
    for (const uint32_t grayMode : {1u, 2u, 3u}) {
        EXPECT_THAT(Convert({0xFFFFFF, 0xFFFFFF}, {.kws = 1, .lightPattern = 1, .grayMode = grayMode}),
                    ElementsAre(0x00000002, 0x00000200));
    }
}

TEST(ConvertRow, ClampsTheGrayWeight) {
    EXPECT_EQ(ConvertInk(plain::Ink(200, 200, 200, 200), {.grayMode = kColorModeBlackGray}), 0x000000FFu);
    EXPECT_EQ(ConvertInk(0xFFFFFFFE, {.grayMode = kColorModeBlackGray}), 0x000000FFu);
}

TEST(ConvertRow, WeighsEachInkByTheLightThatItTakes) {
    EXPECT_EQ(ConvertInk(plain::Ink(0, 100, 0, 0), {.grayMode = kColorModeBlackGray}), 29u);
    EXPECT_EQ(ConvertInk(plain::Ink(0, 0, 100, 0), {.grayMode = kColorModeBlackGray}), 58u);
    EXPECT_EQ(ConvertInk(plain::Ink(0, 0, 0, 100), {.grayMode = kColorModeBlackGray}), 11u);
    EXPECT_EQ(ConvertInk(plain::Ink(0, 255, 0, 0), {.grayMode = kColorModeBlackGray}), 76u);
}

TEST(ConvertRow, PrintsCompositeGrayWithoutBlackAndWithLessCyan) {
    EXPECT_EQ(ConvertInk(plain::Ink(255, 0, 0, 0), {.grayMode = kColorModeCompositeGray}), 0xAAAA8800u);
    EXPECT_EQ(ConvertInk(plain::Ink(0, 100, 0, 0), {.grayMode = kColorModeCompositeGray}),
              0x13130F00u);  // 29: 19, 15
    EXPECT_EQ(ConvertInk(plain::Ink(1, 0, 0, 0), {.grayMode = kColorModeCompositeGray}), 0u);
}

TEST(ConvertRow, TreatsOtherGrayModesAsColor) {
    for (const uint32_t grayMode : {3u, 4u, 0xFFFFFFFFu}) {
        EXPECT_EQ(ConvertInk(0x01020304, {.grayMode = grayMode}), 0x01020304u);
        EXPECT_EQ(ConvertInk(0x01020304, {.kws = 1, .grayMode = grayMode}), 0x01020304u);
    }
}

TEST(ConvertRow, ReturnsASentinelAsItIsWhereNothingIsComputed) {
    EXPECT_EQ(ConvertInk(kNotComputed, {}), kNotComputed);
    EXPECT_EQ(ConvertInk(kNotComputed, {.grayMode = kColorModeBlackGray}), 0x000000FFu);
}

TEST(ConvertRow, KeepsWhatItComputesInTheCache) {
    FillForRows(kGrid);
    const uint32_t want = plain::Prism(0x123456, g_colorCache);
    EXPECT_THAT(Convert({0xFF123456, 0x00123456}), ElementsAre(want, want));
    EXPECT_EQ(g_colorCache[0x123456], want);
}

TEST(ConvertRow, FollowsTheCurrentKind) {
    FillForRows(kGrid);
    SetCacheKind(kPlanes);
    EXPECT_THAT(Convert({0x123456}), ElementsAre(kNotComputed));
    SetCacheKind(kGrid);
    EXPECT_THAT(Convert({0x123456}), ElementsAre(plain::Prism(0x123456, g_colorCache)));
}

TEST(ConvertRow, ConvertsABufferInPlace) {
    FillForRows(kEntries);
    std::vector<uint32_t> row = MixedRow(61, 3);
    const std::vector<uint32_t> want = Convert(row, {.kws = 1});
    ConvertRow(row.data(), row.data(), 61, 1, 1, 0, 0);
    EXPECT_EQ(row, want);
}

TEST(ConvertRow, IgnoresWhatTheDestinationHeld) {
    FillForRows(kEntries);
    std::vector<uint32_t> row(32, 0x123456);
    std::fill(row.begin() + 16, row.end(), 0x654321);
    const std::vector<uint32_t> want = Convert(row);
    std::vector<uint32_t> inks(32, 0x123456);
    ConvertRow(inks.data(), row.data(), 32, 1, 0, 0, kColorModeColor);
    EXPECT_EQ(inks, want);
    EXPECT_EQ(inks[31], g_colorCache[0x654321]);
}

TEST(ConvertRow, ReadsNothingOutsideItsRow) {
    FillForRows(kEntries);
    for (const uint32_t length : RowLengths()) {
        std::vector<uint32_t> row(length);
        std::iota(row.begin(), row.end(), 0x123456);
        EXPECT_EQ(Convert(row).back(), g_colorCache[row.back()]) << length;
    }
}

TEST(ConvertRow, EqualsThePlainConversionForEveryKindModePatternAndLength) {
    for (const int32_t kind : {1, 2, 3, 4, 5}) {
        FillForRows(kind);
        for (const uint32_t length : RowLengths()) {
            const std::vector<uint32_t> row = MixedRow(length, length);
            std::vector<uint32_t> inks;
            for (const uint32_t pixel : row) inks.push_back(LookupColor(pixel));
            for (const uint32_t grayMode : {0u, 1u, 2u, 3u}) {
                for (const int32_t kws : {0, 1}) {
                    for (const uint32_t light : {0u, 1u}) {
                        const RowOptions options{kws, light, grayMode};
                        std::vector<uint32_t> want;
                        for (size_t i = 0; i < row.size(); ++i)
                            want.push_back(plain::Print(inks[i], i, options));
                        ASSERT_EQ(Convert(row, options), want) << "kind " << kind << " length " << length
                                                               << " gray mode " << grayMode << " kws " << kws;
                    }
                }
            }
        }
    }
}

TEST(ConvertRow, EqualsThePlainGrayForEveryWeightOfScatteredInks) {
    FillCache(
        kEntries, 0, [](uint32_t) { return true; }, [](uint32_t color) { return plain::Scramble(color, 5); });
    std::vector<uint32_t> row(1 << 20);
    for (uint32_t i = 0; i < row.size(); ++i) row[i] = i * 16 + i % 16;
    for (const uint32_t grayMode : {1u, 2u}) {
        const RowOptions options{.grayMode = grayMode};
        const std::vector<uint32_t> have = Convert(row, options);
        for (size_t i = 0; i < row.size(); ++i) {
            ASSERT_EQ(have[i], plain::Print(g_colorCache[row[i]], i, options))
                << std::hex << g_colorCache[row[i]];
        }
    }
}

TEST(ConvertRow, AddsThePartsOfAGrayInTheirOrder) {
    // In whole numbers these grays equal the amounts; in double precision many fall just short.
    for (uint32_t amount = 0; amount < 256; ++amount) {
        for (const uint32_t ink : {plain::Ink(amount, 0, 0, 0), plain::Ink(0, amount, amount, amount)}) {
            for (const uint32_t grayMode : {1u, 2u}) {
                const RowOptions options{.grayMode = grayMode};
                EXPECT_EQ(ConvertInk(ink, options), plain::Print(ink, 0, options)) << std::hex << ink;
            }
        }
    }
    EXPECT_EQ(ConvertInk(plain::Ink(100, 0, 0, 0), {.grayMode = kColorModeBlackGray}), 100u);
    EXPECT_EQ(ConvertInk(plain::Ink(64, 0, 0, 0), {.grayMode = kColorModeBlackGray}), 63u);
    EXPECT_EQ(ConvertInk(plain::Ink(13, 0, 0, 0), {.grayMode = kColorModeBlackGray}), 12u);
}

TEST(FillBlankPattern, StartsAtItsFirstPosition) {
    std::vector<uint32_t> inks(6, kUnwritten);
    FillBlankPattern(inks.data(), 5, 1);
    EXPECT_THAT(inks, ElementsAre(0x00000002, 0x00000200, 0x00020000, 0x02000000, 0x00000002, kUnwritten));
    FillBlankPattern(inks.data(), 5, 0);
    EXPECT_THAT(inks, ElementsAre(0x00000004, 0x00000400, 0x00040000, 0x04000000, 0x00000004, kUnwritten));
    FillBlankPattern(nullptr, 0, 0);
}

}  // namespace orvex
