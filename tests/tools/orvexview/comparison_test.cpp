#include "tools/orvexview/comparison.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/png_file.h"

namespace orvex::tools::view {

namespace {

// Art of these samples, red, green and blue.
PngReader Art(uint32_t width, uint32_t height, const Samples& samples) {
    const std::vector<uint8_t> file = EncodePng(MakePicture(width, height, 3, samples), 300);
    return {std::make_unique<std::istringstream>(std::string(file.begin(), file.end())), "art.png"};
}

Comparison Compare(const Picture& picture, PngReader art) {
    Comparer comparer(picture.width, picture.height, art);
    comparer.TakeLines(picture);
    return comparer.Result();
}

}  // namespace

TEST(Comparison, FindsTheLargestAndMeanDifferenceOfEachChannel) {
    const Comparison result = Compare(MakePicture(2, 1, 3, {0x10, 0x1E, 0x33, 255, 255, 250}),
                                      Art(2, 1, {0x10, 0x20, 0x30, 255, 255, 255}));
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
    const Comparison result = Compare(MakePicture(1, 1, 3, {255, 255, 255}), Art(1, 1, {255, 255, 255}));
    EXPECT_EQ(result.different, 0u);
    EXPECT_TRUE(DescribeComparison(result).ends_with("\n0 of 1 pixels differ\n"));
}

TEST(Comparison, TakesAPageInParts) {
    PngReader art = Art(1, 3, {255, 255, 255, 255, 255, 255, 255, 255, 254});
    Comparer comparer(1, 3, art);
    comparer.TakeLines(MakePicture(1, 2, 3, {255, 255, 255, 255, 255, 255}));
    comparer.TakeLines(MakePicture(1, 1, 3, {255, 255, 255}));
    EXPECT_EQ(comparer.Result().different, 1u);
    EXPECT_EQ(comparer.Result().worstY, 2u);
}

TEST(Comparison, RefusesPicturesOfDifferentSizes) {
    EXPECT_EQ(ThrownText([] { Compare(Picture(2, 1, 3), Art(1, 2, Samples(6))); }),
              "the page is 2 x 1 pixels, the picture 1 x 2; they can't be compared");
}

// Art that was read as a whole first would be refused for its damage.
TEST(Comparison, ReadsTheArtNoFurtherThanThePage) {
    const std::vector<uint8_t> whole = EncodePng(MakePicture(1, 3, 3, Samples(9, 255)), 300);
    const std::string cut(whole.begin(), whole.end() - 12);
    PngReader art(std::make_unique<std::istringstream>(cut), "art.png");
    Comparer comparer(1, 3, art);
    comparer.TakeLines(MakePicture(1, 2, 3, Samples(6, 255)));
    EXPECT_EQ(comparer.Result().different, 0u);
    EXPECT_THAT(ThrownText<PageError>([&] { comparer.TakeLines(MakePicture(1, 1, 3, Samples(3, 255))); }),
                testing::StartsWith("art.png is a damaged PNG file"));
}

}  // namespace orvex::tools::view
