#include "tools/orvexview/comparison.h"

#include <gtest/gtest.h>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/thrown_text.h"

namespace orvex::tools::view {

namespace {

Comparison Compare(const Picture& picture, const RasterImage& image) {
    Comparer comparer(picture.width, picture.height, image);
    comparer.TakeLines(picture);
    return comparer.Result();
}

}  // namespace

TEST(Comparison, FindsTheLargestAndMeanDifferenceOfEachChannel) {
    RasterImage image = MakeImage(2, 1);
    image.Row(0)[0] = 0x102030;
    image.Row(0)[1] = 0xFFFFFF;
    const Comparison result = Compare(MakePicture(2, 1, 3, {0x10, 0x1E, 0x33, 255, 255, 250}), image);
    EXPECT_EQ(result.largest[0], 0u);
    EXPECT_EQ(result.largest[1], 2u);
    EXPECT_EQ(result.largest[2], 5u);
    EXPECT_EQ(result.mean[1], 1.0);
    EXPECT_EQ(result.mean[2], 4.0);
    EXPECT_EQ(result.worstX, 1u);
    EXPECT_EQ(result.worstY, 0u);
    EXPECT_EQ(DescribeComparison(result),
              "Channel  Largest difference  Mean difference\n"
              "-------  ------------------  ---------------\n"
              "red      0 of 255            0.000\n"
              "green    2 of 255            1.000\n"
              "blue     5 of 255            4.000\n"
              "2 of 2 pixels differ, most at (1, 0)\n");
}

TEST(Comparison, FindsNoDifferenceBetweenEqualPictures) {
    const Comparison result = Compare(MakePicture(1, 1, 3, {255, 255, 255}), MakeImage(1, 1));
    EXPECT_EQ(result.different, 0u);
    EXPECT_TRUE(DescribeComparison(result).ends_with("\n0 of 1 pixels differ\n"));
}

TEST(Comparison, TakesAPageInParts) {
    RasterImage image = MakeImage(1, 3);
    image.Row(2)[0] = 0xFFFFFE;
    Comparer comparer(1, 3, image);
    comparer.TakeLines(MakePicture(1, 2, 3, {255, 255, 255, 255, 255, 255}));
    comparer.TakeLines(MakePicture(1, 1, 3, {255, 255, 255}));
    EXPECT_EQ(comparer.Result().different, 1u);
    EXPECT_EQ(comparer.Result().worstY, 2u);
}

TEST(Comparison, RefusesPicturesOfDifferentSizes) {
    EXPECT_EQ(ThrownText([] { Compare(Picture(2, 1, 3), MakeImage(1, 2)); }),
              "the page is 2 x 1 pixels, the picture 1 x 2; they can't be compared");
}

}  // namespace orvex::tools::view
