#include "tools/orvexview/page_check.h"

#include <gtest/gtest.h>

#include "tests/tools/orvexview/made_files.h"

namespace orvex::tools::view {
namespace {

constexpr uint32_t kInk = 0xC8;      // of black
constexpr uint32_t kPattern = 0x04;  // of black, as it keeps nozzles wet

PageFacts Check(const Rows& rows, const BlockArea& image, double limit = 4, uint32_t leastLine = 4) {
    const InkModel model(300);
    PageCheck check(model, image, limit, leastLine);
    for (uint32_t row = 0; row < rows.size(); ++row) {
        check.TakeRow(row, rows[row], row > 0 && rows[row] == rows[row - 1]);
    }
    return check.Finish();
}

PageFacts Check(const Rows& rows, double limit = 4) {
    return Check(rows, {0, 0, static_cast<uint32_t>(rows[0].size()), static_cast<uint32_t>(rows.size())},
                 limit);
}

Rows Blank(size_t width, size_t rows) {
    return Rows(rows, std::vector<uint32_t>(width, kPattern));
}

TEST(PageCheck, CountsPixelsOverTheLimit) {
    const uint32_t three = PackInks(255, 255, 255, 0);
    const PageFacts facts = Check({{three, 0, 0xFFFFFFFF}, {three, three, 0}}, 2.9);
    EXPECT_EQ(facts.overLimit, 4u);
    EXPECT_DOUBLE_EQ(facts.mostInk, 4);
    EXPECT_EQ(Check({{three, 0}, {three, three}}, 3).overLimit, 0u);
}

TEST(PageCheck, CountsARepeatedRowAsOftenAsItComes) {
    EXPECT_EQ(Check(Rows(5, {0xFFFFFFFF, 0}), 3).overLimit, 5u);
}

TEST(PageCheck, FindsThinLinesInBothDirections) {
    Rows along = Blank(10, 5);
    std::fill_n(along[2].begin() + 3, 4, kInk);
    EXPECT_EQ(Check(along).thinLines, 1u);
    Rows across = Blank(5, 10);
    for (size_t row = 3; row < 7; ++row) across[row][2] = kInk;
    EXPECT_EQ(Check(across).thinLines, 1u);
}

TEST(PageCheck, FindsThinLinesAtTheEdges) {
    Rows rows = Blank(10, 10);
    std::fill_n(rows[0].begin() + 2, 6, kInk);
    std::fill_n(rows[9].begin() + 2, 6, kInk);
    EXPECT_EQ(Check(rows).thinLines, 2u);
}

TEST(PageCheck, LinesOfTwoPixelsAndShortOnesAreFine) {
    Rows rows = Blank(10, 10);
    std::fill_n(rows[2].begin(), 10, kInk);
    std::fill_n(rows[3].begin(), 10, kInk);
    std::fill_n(rows[6].begin(), 3, kInk);
    EXPECT_EQ(Check(rows).thinLines, 0u);
}

// Returns a picture without order, each pixel of which is `across` pixels of a row in `along` rows.
Rows Enlarged(size_t across, size_t along) {
    Rows rows(120, std::vector<uint32_t>(120));
    for (size_t row = 0; row < rows.size(); ++row) {
        for (size_t x = 0; x < rows[row].size(); ++x) {
            const size_t cell = 1000 * (row / along) + x / across;
            rows[row][x] = cell * cell % 7 < 3 ? kInk : kPattern;
        }
    }
    return rows;
}

TEST(PageCheck, FindsArtThatWasEnlarged) {
    EXPECT_EQ(Check(Enlarged(1, 1)).enlarged, 1u);
    EXPECT_EQ(Check(Enlarged(2, 2)).enlarged, 2u);
    EXPECT_EQ(Check(Enlarged(3, 3)).enlarged, 3u);
    EXPECT_EQ(Check(Enlarged(2, 3)).enlarged, 1u) << "no size of the art gives that";
    EXPECT_EQ(Check(Enlarged(2, 2), {1, 1, 118, 118}).enlarged, 2u) << "the grid may begin anywhere";
    Rows rows = Enlarged(2, 2);
    for (size_t x = 50; x < 60; ++x) rows[61][x] = rows[60][x] == kInk ? kPattern : kInk;
    EXPECT_EQ(Check(rows).enlarged, 1u) << "a finer detail";
    EXPECT_EQ(Check(Blank(100, 100)).enlarged, 1u);
    EXPECT_EQ(Check(Enlarged(10, 10)).enlarged, 1u) << "too few edges to tell";
}

TEST(PageCheck, LooksAtTheImageAlone) {
    Rows rows = Blank(10, 10);
    std::fill_n(rows[0].begin(), 10, 0xFFFFFFFFu);
    const PageFacts facts = Check(rows, {0, 2, 10, 8}, 3);
    EXPECT_EQ(facts.overLimit, 0u);
    EXPECT_EQ(facts.thinLines, 0u);
}

}  // namespace
}  // namespace orvex::tools::view
