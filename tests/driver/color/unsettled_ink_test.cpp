// Inks that are not settled: a table lacks an entry, and inks computed from it change once another look-up
// fills it. Rows must print what looking up pixel by pixel gives.

#include <gmock/gmock.h>

#include <set>
#include <vector>

#include "driver/color/color_adjustment.h"
#include "driver/color/row_conversion.h"
#include "tests/driver/color/cache_filling.h"
#include "tests/plain/plain_rows.h"

namespace orvex {

using testing::Each;
using testing::ElementsAre;

namespace {

uint32_t InkOf(uint32_t color) {
    return plain::Scramble(color) % 7 == 0 ? 0 : plain::Scramble(color, 1) & 0x7FFFFFFF;
}

std::vector<uint32_t> Printed(const std::vector<uint32_t>& pixels, plain::RowOptions options = {}) {
    std::vector<uint32_t> inks(pixels.size());
    ConvertRow(inks.data(), pixels.data(), static_cast<uint32_t>(pixels.size()), 1, options.kws,
               options.lightPattern, options.grayMode);
    return inks;
}

// The cache, with entries of the neighborhood missing, and a copy for the plain look-ups.
class GappyCache {
  public:
    explicit GappyCache(int32_t kind) : around(kind) {
        if (kind == kGrid) {
            FillGrid(InkOf);
        } else {
            FillCache(kind, kind == kHalfGridEntries ? 0 : kNotComputed, plain::IsAllEven, InkOf);
        }
        table.assign(g_colorCache, g_colorCache + kCacheEntries);
    }
    // Starts over with these stored entries missing.
    void Clear(uint32_t missing) {
        around.Fill(missing, InkOf, g_colorCache);
        around.Fill(missing, InkOf, table.data());
        SetCacheKind(around.kind);
    }

    const plain::Neighborhood around;
    std::vector<uint32_t> table;
};

// Returns a row with long runs of a color of the neighborhood, separated by two others, until all others have
// come.
std::vector<uint32_t> RunsOf(const plain::Neighborhood& around, uint32_t color) {
    std::vector<uint32_t> row;
    for (uint32_t other = 0; other < plain::Neighborhood::kColors; ++other) {
        if (other % 2 == 0) row.insert(row.end(), 8 + plain::Scramble(other) % 8, around.Color(color));
        row.push_back(around.Color((color + 29 * other) % plain::Neighborhood::kColors) | 0x55000000);
    }
    return row;
}

// Converts a row with runs of each color, twice, starting with a new table each time, and compares the inks
// with the plain ones. Returns how many colors printed two inks; 0 and the pattern don't count.
size_t ExpectPlainRows(GappyCache* cache, uint32_t missing, plain::RowOptions options) {
    size_t changing = 0;
    for (uint32_t color = 0; color < plain::Neighborhood::kColors; ++color) {
        cache->Clear(missing);
        const std::vector<uint32_t> row = RunsOf(cache->around, color);
        std::set<uint32_t> inks;
        for (int turn = 0; turn < 2; ++turn) {
            const std::vector<uint32_t> have = Printed(row, options);
            EXPECT_EQ(have, plain::PrintRow(row, options, cache->around.kind, cache->table.data()))
                << "color " << color << " turn " << turn;
            for (size_t x = 0; x < row.size(); ++x) {
                if ((row[x] & kColorBits) == row[0] && have[x] > 0x04000000) inks.insert(have[x]);
            }
        }
        changing += inks.size() > 1;
    }
    return changing;
}

constexpr uint32_t kAllMissing = (1 << plain::Neighborhood::kStored) - 1;

}  // namespace

TEST(UnsettledInk, ChangesOnceAnotherLookUpFillsACorner) {
    FillGrid(
        [](uint32_t color) { return color == 0x0080F0 || color == 0x0090FF ? kNotComputed : InkOf(color); });
    EXPECT_EQ(LookupColor(0x0088F8), kNotComputed);
    EXPECT_FALSE(InksAreSettled());
    EXPECT_NE(LookupColor(0x0090FF), kNotComputed);
    EXPECT_NE(LookupColor(0x0088F8), kNotComputed);
}

TEST(UnsettledInk, IsLookedUpAgainAfterABlockOfOtherColors) {
    for (const int32_t kws : {0, 1}) {
        FillGrid([](uint32_t color) {
            return color == 0x0080F0 || color == 0x0090FF ? kNotComputed : 0x10101010;
        });
        // The row is a block of one color, a mixed one, and the first one again.
        std::vector<uint32_t> row(24, 0x0088F8);
        row[11] = 0x0090FF;
        const std::vector<uint32_t> inks = Printed(row, {.kws = kws});
        EXPECT_THAT(std::vector(inks.begin(), inks.begin() + 11), Each(kNotComputed));
        EXPECT_EQ(inks[11], 0xF0F0F0F0);  // 15/16 of 255 and 1/16 of 16, truncated
        EXPECT_THAT(std::vector(inks.begin() + 12, inks.end()), Each(0xF7F7F7F7));
    }
}

TEST(UnsettledInk, EqualsThePlainOneForEveryKindPatternAndGray) {
    for (const int32_t kind : {3, 4, 5}) {
        GappyCache cache(kind);
        size_t changing = 0;
        for (uint32_t present = 0; present < plain::Neighborhood::kStored; ++present) {
            for (const uint32_t grayMode : {0u, 1u, 2u}) {
                if (grayMode != 0 && present % 8 != 0) continue;  // most grays hide the change
                const plain::RowOptions options{static_cast<int32_t>((present + grayMode) % 2), 1, grayMode};
                SCOPED_TRACE(testing::Message() << "kind " << kind << " present " << present << " gray mode "
                                                << grayMode << " kws " << options.kws);
                changing += ExpectPlainRows(&cache, kAllMissing & ~(1u << present), options);
            }
        }
        EXPECT_TRUE(HoldsTable(cache.table));
        // Entries of kind 3 are computed only from stored ones.
        EXPECT_EQ(changing > 0, kind != kHalfGridEntries) << changing << " colors of kind " << kind;
    }
}

TEST(UnsettledInk, ResultsFromAnAdjustedHalfGridToo) {
    // Grid points at 255 are not computed yet when the adjustment copies the grid, and it moves others there.
    struct Case {
        AdjustmentValue value;
        int32_t amount;
        uint32_t color, corner;
    };
    for (const Case& each : {Case{kBrightness, 50, 0xFF7FFF, 0xFF80FF},
                             {kSaturation, 20, 0xFF7FFF, 0xFF80FF},
                             {kBlack, -20, 0xFFFFEF, 0xFFFFF0}}) {
        FillCache(kHalfGridPlanes, kNotComputed, plain::IsAllEven, InkOf);
        int32_t values[kAdjustmentValues] = {};
        values[each.value] = each.amount;
        AdjustColors(values, {});
        std::vector<uint32_t> table(g_colorCache, g_colorCache + kCacheEntries);

        std::vector<uint32_t> row(24, each.color);
        row[11] = each.corner;
        const std::vector<uint32_t> inks = Printed(row);
        EXPECT_EQ(inks, plain::PrintRow(row, {}, kGrid, table.data()));
        EXPECT_EQ(inks[0], kNotComputed);
        EXPECT_NE(inks[23], kNotComputed);
        EXPECT_TRUE(HoldsTable(table));
    }
}

TEST(SettledInk, IsGivenByEveryTableWithoutAMissingPoint) {
    for (const int32_t kind : {3, 4, 5}) {
        GappyCache cache(kind);
        EXPECT_EQ(ExpectPlainRows(&cache, 0, {}), 0u);
        EXPECT_TRUE(InksAreSettled()) << kind;
    }
}

TEST(SettledInk, CanBeTheSentinelWhereNothingIsComputed) {
    for (const int32_t kind : {1, 2, 0, 6}) {
        FillGrid([](uint32_t) { return kNotComputed; });
        SetCacheKind(kind);
        EXPECT_EQ(LookupColor(0x0088F8), kNotComputed);
        EXPECT_TRUE(InksAreSettled()) << kind;
    }
}

TEST(SettledInk, IsGivenWhereTheLookUpFillsItsOwnEntry) {
    // The grid point at 255 is a corner of its own cell; the other corner is there.
    FillGrid([](uint32_t color) { return color == 0x0000FF ? kNotComputed : 0x10101010; });
    EXPECT_THAT(Printed({0x0000FF, 0x0000FF, 0x0000F8}), ElementsAre(0xF0F0F0F0, 0xF0F0F0F0, 0x80808080));
    EXPECT_TRUE(InksAreSettled());
}

TEST(SettledInk, IsForgottenWithEachNewTable) {
    FillGrid([](uint32_t) { return kNotComputed; });
    EXPECT_EQ(LookupColor(0x000000), kNotComputed);
    EXPECT_FALSE(InksAreSettled());
    EXPECT_EQ(LookupColor(0x0000FF), kNotComputed);
    EXPECT_FALSE(InksAreSettled());
    SetCacheKind(kGrid);
    EXPECT_TRUE(InksAreSettled());
}

}  // namespace orvex
