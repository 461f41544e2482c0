#include "driver/render/page_layout.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/plain/page_layout.h"

namespace orvex {

namespace {

// A 100 x 150 mm portrait page at 600 dpi.
PageLayoutInput Portrait600() {
    PageLayoutInput input = {};
    input.bitmapWidth = 2362;
    input.bitmapHeight = 3543;
    input.dpi = 600;
    input.alignment = 1;
    return input;
}

PageLayoutInput FullWidth600(int32_t rows, int16_t alignment) {
    PageLayoutInput input = Portrait600();
    input.bitmapWidth = rows;
    input.kws = true;
    input.kwsFullWidth = true;
    input.alignment = alignment;
    return input;
}

void ExpectPlacement(const Placement& place, int32_t topOff, int32_t fullTop, int32_t fullBottom) {
    EXPECT_EQ(place.topOff, topOff);
    EXPECT_EQ(place.fullTop, fullTop);
    EXPECT_EQ(place.fullBottom, fullBottom);
}

}  // namespace

TEST(PageLayout, SendsAPortraitPageColumnByColumn) {
    const PageLayout layout = ComputePageLayout(Portrait600());
    EXPECT_EQ(layout.imageWidth, 3543);
    EXPECT_EQ(layout.rows, 2362);
    EXPECT_EQ(layout.rowWidth, 3543);
    EXPECT_EQ(layout.headRows, 2362);
}

TEST(PageLayout, SendsALandscapePageLineByLine) {
    PageLayoutInput input = Portrait600();
    input.landscape = true;
    const PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.imageWidth, 2362);
    EXPECT_EQ(layout.rows, 3543);
}

TEST(PageLayout, MeasuresInEngineUnitsWithAMarginOfAThirdOfAnInch) {
    const PageLayout layout = ComputePageLayout(Portrait600());
    EXPECT_EQ(layout.unit, 12);
    EXPECT_EQ(layout.imageWUnits, 42516);
    EXPECT_EQ(layout.imageHUnits, 28344);
    EXPECT_EQ(layout.pageWUnits, 44916);
    EXPECT_EQ(layout.pageHUnits, 30744);
    PageLayoutInput input = Portrait600();
    input.dpi = 300;
    EXPECT_EQ(ComputePageLayout(input).unit, 24);
}

TEST(PageLayout, IsFullWidthOnlyWithKwsOrAPurgeBar) {
    PageLayoutInput input = Portrait600();
    input.kwsFullWidth = true;
    EXPECT_FALSE(ComputePageLayout(input).fullWidth);
    input.purgeBar = 2;
    EXPECT_TRUE(ComputePageLayout(input).fullWidth);
    input.purgeBar = 0;
    input.kws = true;
    EXPECT_TRUE(ComputePageLayout(input).fullWidth);
    input.kwsFullWidth = false;
    EXPECT_FALSE(ComputePageLayout(input).fullWidth);
}

TEST(PageLayout, FillsTheHeadWidthEvenlyAroundACenteredImage) {
    const PageLayout layout = ComputePageLayout(FullWidth600(5000, 1));
    ExpectPlacement(layout.halves, 0, 1010, 1010);
    ExpectPlacement(layout.placed, 0, 1010, 1010);
    EXPECT_EQ(layout.headRows, 7020);
    const PageLayout odd = ComputePageLayout(FullWidth600(5001, 1));
    ExpectPlacement(odd.placed, 0, 1009, 1010);
}

TEST(PageLayout, PutsTheWholeFillAfterOrBeforeAnAlignedImage) {
    ExpectPlacement(ComputePageLayout(FullWidth600(5000, 2)).placed, 0, 0, 2020);
    ExpectPlacement(ComputePageLayout(FullWidth600(5000, 0)).placed, 0, 2020, 0);
    ExpectPlacement(ComputePageLayout(FullWidth600(5001, 2)).placed, 0, 0, 2019);
    ExpectPlacement(ComputePageLayout(FullWidth600(5001, 0)).placed, 0, 2019, 0);
}

TEST(PageLayout, HalvesANegativeFillAsUnsignedWithoutClamping) {
    const PageLayout layout = ComputePageLayout(FullWidth600(7030, 1));
    ExpectPlacement(layout.halves, 0, 2147483643, 2147483643);
    EXPECT_EQ(layout.headRows, 7020);
}

TEST(PageLayout, HasAHeadOf11Point7Inches) {
    EXPECT_EQ(HeadWidthPx(600), 7020);
    EXPECT_EQ(HeadWidthPx(300), 3510);
    EXPECT_EQ(HeadWidthPx(150), 1755);
    EXPECT_EQ(HeadWidthPx(1200), 1755);
}

TEST(PageLayout, AddsALeadingPurgeBar) {
    PageLayoutInput input = Portrait600();
    input.purgeBar = 1;
    input.purgeDots = 16;
    input.purgeGap = 2;
    const PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.purgeLen, 62);
    EXPECT_EQ(layout.purgeLead, 1);
    EXPECT_EQ(layout.purgeDots, 16);
    EXPECT_EQ(layout.rowWidth, 3543 + 62);
    EXPECT_EQ(layout.imageWUnits, 12 * (3543 + 62));
}

TEST(PageLayout, AddsATrailingPurgeBarWithWholePixelsPerMillimeter) {
    PageLayoutInput input = Portrait600();
    input.dpi = 300;
    input.purgeBar = 2;
    input.purgeDots = 10;
    input.purgeGap = 5;
    const PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.purgeLen, 10 + 11 * 5);
    EXPECT_EQ(layout.purgeLead, 0);
}

TEST(PageLayout, Has25Point4MillimetersToTheInch) {
    PageLayoutInput input = Portrait600();
    input.dpi = 254;
    input.purgeBar = 1;
    input.purgeGap = 5;
    EXPECT_EQ(ComputePageLayout(input).purgeLen, 50);
}

TEST(PageLayout, TakesNoPurgeDotsWithoutAPurgeBar) {
    PageLayoutInput input = Portrait600();
    input.purgeDots = 10;
    input.purgeGap = 5;
    const PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.purgeLen, 0);
    EXPECT_EQ(layout.purgeDots, 0);
    EXPECT_EQ(layout.rowWidth, layout.imageWidth);
}

TEST(PageLayout, MakesTheEnginePageAsLongAsACenteredImageOrFullLength) {
    PageLayoutInput input = Portrait600();
    EXPECT_EQ(ComputePageLayout(input).pageLengthUnits, 30744);
    input.alignment = 0;
    EXPECT_EQ(ComputePageLayout(input).pageLengthUnits, 86616);
    input.alignment = 2;
    EXPECT_EQ(ComputePageLayout(input).pageLengthUnits, 86616);
    EXPECT_EQ(ComputePageLayout(FullWidth600(5000, 1)).pageLengthUnits, 86616);
}

TEST(PageLayout, PlacesAnImageAtTheFarEndOfTheHead) {
    PageLayoutInput input = Portrait600();
    input.alignment = 0;
    ExpectPlacement(ComputePageLayout(input).placed, 7020 - 2362, 0, 0);
    input.alignment = 2;
    ExpectPlacement(ComputePageLayout(input).placed, 0, 0, 0);
}

TEST(PageLayout, ReversesTheSignOfThePrintHeadOffset) {
    PageLayoutInput input = Portrait600();
    input.dpi = 300;
    input.phHOffset = 10;
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, -12);
    input.phHOffset = -10;
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, 11);
    input.phHOffset = 0;
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, 0);
    input.phHOffset = 69;  // 81.496 pixels
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, -81);
    input.phHOffset = -69;
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, 80);
    input.phHOffset = 1000;
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, -1181);
    input.phHOffset = 20;
    input.dpi = 600;
    EXPECT_EQ(ComputePageLayout(input).phOffsetPx, -47);
}

TEST(PageLayout, MovesAFarEndImageBackByANegativeOffsetDownToZero) {
    PageLayoutInput input = Portrait600();
    input.alignment = 0;
    input.phHOffset = 20;
    PageLayout layout = ComputePageLayout(input);
    ExpectPlacement(layout.aligned, 4658, 0, 0);
    ExpectPlacement(layout.placed, 4611, 0, 0);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kRightAligned);
    input.bitmapWidth = 7000;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.placed.topOff, 0);
    input.phHOffset = -20;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.placed.topOff, 20);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kNone);
}

TEST(PageLayout, MovesANearEndImageByAPositiveOffsetWithinTheHead) {
    PageLayoutInput input = Portrait600();
    input.alignment = 2;
    input.phHOffset = -20;
    PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.phOffsetPx, 46);
    EXPECT_EQ(layout.placed.topOff, 46);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kLeftAligned);
    input.bitmapWidth = 7000;
    EXPECT_EQ(ComputePageLayout(input).placed.topOff, 20);
    input.phHOffset = 20;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.placed.topOff, 0);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kNone);
}

TEST(PageLayout, LengthensACenteredPageEitherWayButMovesItOnlyForward) {
    PageLayoutInput input = Portrait600();
    input.phHOffset = 20;
    PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kCentered);
    EXPECT_EQ(layout.offsetAmount, 47 * 12 * 2);
    EXPECT_EQ(layout.pageLengthUnits, 30744 + 47 * 12 * 2);
    EXPECT_EQ(layout.placed.topOff, 0);
    input.phHOffset = -20;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.pageLengthUnits, 30744 + 46 * 12 * 2);
    EXPECT_EQ(layout.placed.topOff, 600 * (46 * 12 * 2) / 7200);
}

TEST(PageLayout, LengthensACenteredPageNoFurtherThanTheFullLength) {
    PageLayoutInput input = Portrait600();
    input.bitmapWidth = 7000;
    input.phHOffset = -1000;
    const PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.offsetAmount, 86616 - (7000 * 12 + 2400));
    EXPECT_EQ(layout.pageLengthUnits, 86616);
}

TEST(PageLayout, ShiftsTheFillOfAFullWidthPageWithinItsBounds) {
    PageLayoutInput input = FullWidth600(5000, 0);
    input.phHOffset = 20;
    PageLayout layout = ComputePageLayout(input);
    ExpectPlacement(layout.placed, 0, 2020 - 47, 47);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kFullRightAligned);
    EXPECT_EQ(layout.offsetAmount, 47);
    input.phHOffset = 1000;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.offsetAmount, 2020);
    ExpectPlacement(layout.placed, 0, 0, 2020);
    input.phHOffset = -20;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kNone);
    ExpectPlacement(layout.placed, 0, 2020, 0);

    input = FullWidth600(5000, 2);
    input.phHOffset = -20;
    layout = ComputePageLayout(input);
    ExpectPlacement(layout.placed, 0, 46, 2020 - 46);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kFullLeftAligned);
    input.phHOffset = 20;
    layout = ComputePageLayout(input);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kNone);
    ExpectPlacement(layout.placed, 0, 0, 2020);
}

TEST(PageLayout, GrowsBothFillsOfACenteredFullWidthPageByTheSameSignedAmount) {
    PageLayoutInput input = FullWidth600(5000, 1);
    input.phHOffset = 20;
    PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.offsetEffect, OffsetEffect::kFullCentered);
    EXPECT_EQ(layout.offsetAmount, -47);
    ExpectPlacement(layout.aligned, 0, 1010, 1010);
    ExpectPlacement(layout.placed, 0, 963, 963);
    EXPECT_EQ(layout.headRows, 7020);
    input.phHOffset = -20;
    ExpectPlacement(ComputePageLayout(input).placed, 0, 1056, 1056);
    input.bitmapWidth = 5001;
    ExpectPlacement(ComputePageLayout(input).placed, 0, 1055, 1056);
}

TEST(PageLayout, MovesByASinglePixel) {
    PageLayoutInput input = FullWidth600(5000, 2);
    input.phHOffset = -1;
    ExpectPlacement(ComputePageLayout(input).placed, 0, 1, 2019);
    input.kws = false;
    ExpectPlacement(ComputePageLayout(input).placed, 1, 0, 0);
    input.alignment = 1;
    ExpectPlacement(ComputePageLayout(input).placed, 2, 0, 0);
    EXPECT_EQ(ComputePageLayout(input).offsetAmount, 2 * 12);
    input.dpi = 300;
    input.bitmapWidth = 3000;
    input.alignment = 0;
    input.phHOffset = 1;
    ExpectPlacement(ComputePageLayout(input).placed, 510 - 1, 0, 0);
}

TEST(PageLayout, WrapsAbsurdSizesWithoutTrapping) {
    PageLayoutInput input = Portrait600();
    input.bitmapWidth = INT32_MAX;
    input.bitmapHeight = INT32_MAX;
    input.purgeBar = 1;
    input.purgeDots = UINT16_MAX;
    input.purgeGap = UINT16_MAX;
    input.phHOffset = INT16_MIN;
    for (const int16_t alignment : {0, 1, 2}) {
        for (const bool fullWidth : {false, true}) {
            input.alignment = alignment;
            input.kwsFullWidth = fullWidth;
            EXPECT_STREQ(plain::DifferentMeasure(ComputePageLayout(input), plain::ComputeLayout(input)),
                         nullptr)
                << alignment << ' ' << fullWidth;
        }
    }
}

TEST(PageLayout, LaysOutTheLargestPage) {
    PageLayoutInput input = Portrait600();
    input.bitmapWidth = 7016;
    input.bitmapHeight = 21300;
    input.purgeBar = 2;
    input.purgeDots = 10;
    input.purgeGap = 15;
    input.phHOffset = -1000;
    PageLayout layout = ComputePageLayout(input);
    EXPECT_EQ(layout.imageWidth, 21300);
    EXPECT_EQ(layout.rowWidth, 21300 + 10 + 23 * 15);
    EXPECT_EQ(layout.rows, 7016);
    EXPECT_EQ(layout.imageWUnits, 12 * 21655);
    EXPECT_EQ(layout.pageWUnits, 12 * 21655 + 2400);
    EXPECT_EQ(layout.pageHUnits, 12 * 7016 + 2400);
    EXPECT_EQ(layout.pageLengthUnits, 86616);
    EXPECT_EQ(layout.placed.topOff, 600 * (86616 - (12 * 7016 + 2400)) / 7200);
    input.kwsFullWidth = true;
    layout = ComputePageLayout(input);
    ExpectPlacement(layout.halves, 0, 2, 2);
    ExpectPlacement(layout.placed, 0, 2 + 2361, 2 + 2361);
}

// 3276.7 mm on both sides: the largest size that a label of the printer's list can have.
TEST(PageLayout, LaysOutTheLargestLabelWithoutWrapping) {
    PageLayoutInput input = Portrait600();
    input.bitmapWidth = input.bitmapHeight = 77402;
    input.purgeBar = 1;
    input.purgeDots = 10;
    input.purgeGap = 15;
    for (const bool landscape : {false, true}) {
        input.landscape = landscape;
        const PageLayout layout = ComputePageLayout(input);
        EXPECT_EQ(layout.rowWidth, 77402 + 355);
        EXPECT_EQ(layout.imageWUnits, 12 * (77402 + 355));
        EXPECT_EQ(layout.pageHUnits, 12 * 77402 + 2400);
        EXPECT_EQ(layout.pageLengthUnits, 12 * 77402 + 2400);
    }
    input.alignment = 0;
    EXPECT_EQ(ComputePageLayout(input).placed.topOff, 7020 - 77402);
}

}  // namespace orvex
