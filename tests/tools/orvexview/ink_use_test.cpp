#include "tools/orvexview/ink_use.h"

#include <gmock/gmock.h>

#include "tests/tools/orvexview/made_files.h"

namespace orvex::tools::view {
namespace {

using testing::ElementsAre;

// An image of 2 x 2 pixels, with a purge bar of 1 before it and a fill row above.
PagePlacement SmallPlacement() {
    PagePlacement placement;
    placement.imageLeft = 1;
    placement.imageWidth = 2;
    placement.imageTop = 1;
    placement.imageRows = 2;
    placement.purgeWidth = 1;
    return placement;
}

InkUse Count(const Rows& rows, bool withPattern) {
    InkCounter counter(SmallPlacement(), withPattern);
    for (uint32_t row = 0; row < rows.size(); ++row) {
        counter.TakeRow(row, rows[row], row > 0 && rows[row] == rows[row - 1]);
    }
    return counter.Use();
}

TEST(InkUse, PurgeBarAndPatternAreCountedApart) {
    const uint32_t bar = 0x0A0A0A0A;
    const InkUse use =
        Count({{bar, 0x04, 0x0400}, {bar, 200, 0x020000}, {bar, 0x00000A00, 0x04000000}}, true);
    EXPECT_THAT(use.label, ElementsAre(200, 10, 0, 0));
    EXPECT_THAT(use.purgeBar, ElementsAre(30, 30, 30, 30));
    EXPECT_THAT(use.pattern, ElementsAre(4, 4, 2, 4));
}

TEST(InkUse, WithoutThePatternFaintInkIsTheLabels) {
    EXPECT_THAT(Count({{0, 0, 0}, {0, 4, 4}, {0, 0, 2}}, false).label, ElementsAre(10, 0, 0, 0));
}

// The row after the fill may repeat it, and is the label's nevertheless.
TEST(InkUse, ARepeatedRowCountsByItsPlace) {
    const InkUse use = Count(Rows(3, {0, 7, 7}), false);
    EXPECT_THAT(use.purgeBar, ElementsAre(14, 0, 0, 0));
    EXPECT_THAT(use.label, ElementsAre(28, 0, 0, 0));
}

}  // namespace
}  // namespace orvex::tools::view
