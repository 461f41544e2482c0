#include "tools/common/canvas.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tools/common/guarded_page.h"

namespace orvex::tools {

TEST(Canvas, ClipsEverythingToThePage) {
    GuardedPage page(10, 6);
    page.canvas.Fill(-5, -5, 7, 7, 1);
    page.canvas.Fill(8, 4, 100, 100, 2);
    page.canvas.Fill(20, 0, 5, 5, 3);
    page.canvas.Fill(0, 9, 5, 5, 3);
    page.canvas.Fill(3, 3, -2, -2, 3);
    page.canvas.Frame(-3, -3, 100, 100, 2, 3);
    page.canvas.Text(-4, -4, 3, "edge", 4);
    page.canvas.Text(6, 3, 5, "far too long for the page", 4);
    EXPECT_TRUE(page.memory.Intact());
    EXPECT_EQ(std::count(page.Pixels(), page.Pixels() + 60, 3u), 0);
}

TEST(Canvas, FillsExactlyTheRectangle) {
    GuardedPage page(5, 4);
    page.canvas.Fill(1, 1, 3, 2, 7);
    EXPECT_EQ(std::count(page.Pixels(), page.Pixels() + 20, 7u), 6);
    EXPECT_EQ(page.At(1, 1), 7u);
    EXPECT_EQ(page.At(3, 2), 7u);
}

TEST(Canvas, WritesLettersThatGrowWithTheScale) {
    GuardedPage one(200, 20);
    one.canvas.Text(2, 2, 1, "Orvex", kBlack);
    const auto ink = std::count(one.Pixels(), one.Pixels() + 4000, kBlack);
    EXPECT_GT(ink, 40);
    GuardedPage two(400, 40);
    two.canvas.Text(2, 2, 2, "Orvex", kBlack);
    EXPECT_EQ(std::count(two.Pixels(), two.Pixels() + 16000, kBlack), 4 * ink);
    EXPECT_EQ(Canvas::TextWidth("Orvex", 2), 2 * Canvas::TextWidth("Orvex", 1));
}

TEST(Canvas, ShowsAQuestionMarkForOtherCharacters) {
    GuardedPage umlaut(60, 20);
    umlaut.canvas.Text(2, 2, 1, "\xC3\x7F", kBlack);
    GuardedPage marks(60, 20);
    marks.canvas.Text(2, 2, 1, "??", kBlack);
    EXPECT_EQ(umlaut.All(), marks.All());
}

}  // namespace orvex::tools
