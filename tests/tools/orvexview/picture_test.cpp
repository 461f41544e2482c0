#include "tools/orvexview/picture.h"

#include <gtest/gtest.h>
#include <lodepng.h>

#include "driver/support/heap.h"
#include "tools/common/png_page.h"
#include "tools/orvexview/comparison.h"
#include "tools/orvexview/png_file.h"

namespace orvex::tools::view {

namespace {

using Samples = std::vector<uint8_t>;

Picture Reduce(uint32_t width, uint32_t height, uint32_t channels, uint32_t scale, const Samples& samples) {
    Reducer reducer(width, height, channels, scale);
    for (uint32_t y = 0; y < height; ++y) {
        std::copy_n(samples.begin() + y * width * channels, width * channels, reducer.Line().begin());
        reducer.TakeLine();
    }
    return reducer.Finish();
}

Picture MakePicture(uint32_t width, uint32_t height, uint32_t channels, const Samples& samples) {
    Picture picture(width, height, channels);
    picture.samples = samples;
    return picture;
}

}  // namespace

TEST(Reducer, AScaleOfOneKeepsEveryPixel) {
    const Samples samples = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(Reduce(3, 2, 1, 1, samples).samples, samples);
    EXPECT_EQ(Reduce(1, 2, 3, 1, samples).samples, samples);
}

TEST(Reducer, AGroupBecomesItsRoundedMean) {
    EXPECT_EQ(Reduce(2, 2, 1, 2, {10, 20, 30, 41}).samples, Samples({25}));
    EXPECT_EQ(Reduce(2, 2, 1, 2, {10, 20, 30, 42}).samples, Samples({26}));
    EXPECT_EQ(Reduce(2, 1, 3, 2, {0, 10, 20, 100, 30, 255}).samples, Samples({50, 20, 138}));
}

TEST(Reducer, WhatIsLeftOverMakesSmallerGroups) {
    const Picture picture = Reduce(3, 3, 1, 2, {0, 4, 10, 8, 12, 20, 100, 200, 77});
    EXPECT_EQ(picture.width, 2u);
    EXPECT_EQ(picture.height, 2u);
    EXPECT_EQ(picture.samples, Samples({6, 15, 150, 77}));
}

TEST(Reducer, AScaleLargerThanThePictureLeavesOnePixel) {
    EXPECT_EQ(Reduce(2, 2, 1, 1000, {10, 20, 30, 40}).samples, Samples({25}));
}

TEST(Picture, TheScaleThatFitsIsTheSmallest) {
    EXPECT_EQ(ScaleToFit(1, 1600), 1u);
    EXPECT_EQ(ScaleToFit(1600, 1600), 1u);
    EXPECT_EQ(ScaleToFit(1601, 1600), 2u);
    EXPECT_EQ(ScaleToFit(3543, 1600), 3u);
}

TEST(Picture, TurnsClockwise) {
    const Picture turned = TurnClockwise(MakePicture(3, 2, 1, {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(turned.width, 2u);
    EXPECT_EQ(turned.height, 3u);
    EXPECT_EQ(turned.samples, Samples({4, 1, 5, 2, 6, 3}));
    EXPECT_EQ(TurnClockwise(MakePicture(2, 1, 3, {1, 2, 3, 4, 5, 6})).samples, Samples({1, 2, 3, 4, 5, 6}));
}

TEST(Picture, RectanglesEndAtItsEdges) {
    Picture picture(3, 2, 3);
    FillRectangle(picture, -5, 1, 7, 9, {1, 2, 3});
    EXPECT_EQ(picture.samples, Samples({0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 1, 2, 3, 0, 0, 0}));
    FillRectangle(picture, 3, 0, 1, 1, {9, 9, 9});
    FillRectangle(picture, 0, -1, 1, 1, {9, 9, 9});
    EXPECT_EQ(picture.samples, Samples({0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 1, 2, 3, 0, 0, 0}));
}

TEST(Picture, AnOutlineIsOnePixelWide) {
    Picture picture(3, 3, 3);
    OutlineRectangle(picture, 0, 0, 3, 3, {7, 7, 7});
    for (uint32_t y = 0; y < 3; ++y) {
        for (uint32_t x = 0; x < 3; ++x) EXPECT_EQ(picture.At(x, y)[1], x == 1 && y == 1 ? 0 : 7);
    }
}

TEST(PngFile, KeepsEveryPixelAndTheResolution) {
    const Picture picture = MakePicture(2, 2, 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3});
    const RasterImage image = DecodePng(EncodePng(picture, 200));
    ASSERT_EQ(image.width, 2u);
    ASSERT_EQ(image.height, 2u);
    EXPECT_EQ(image.Row(0)[0], 0xFF0000u);
    EXPECT_EQ(image.Row(0)[1], 0x00FF00u);
    EXPECT_EQ(image.Row(1)[0], 0x0000FFu);
    EXPECT_EQ(image.Row(1)[1], 0x010203u);
    ASSERT_TRUE(image.density);
    EXPECT_EQ(image.density->x, 7874);
    EXPECT_EQ(image.density->y, 7874);
}

TEST(PngFile, AGrayPictureIsAGrayFile) {
    const std::vector<uint8_t> png = EncodePng(MakePicture(2, 1, 1, {0, 200}), 300);
    unsigned char* pixels = nullptr;
    unsigned width = 0;
    unsigned height = 0;
    LodePNGState state;
    lodepng_state_init(&state);
    state.info_raw.colortype = LCT_GREY;
    const unsigned error = lodepng_decode(&pixels, &width, &height, &state, png.data(), png.size());
    const HeapArray<unsigned char> owned(pixels);
    EXPECT_EQ(state.info_png.color.colortype, LCT_GREY);
    lodepng_state_cleanup(&state);
    ASSERT_EQ(error, 0u);
    ASSERT_EQ(width * height, 2u);
    EXPECT_EQ(std::vector<uint8_t>(pixels, pixels + 2), Samples({0, 200}));
}

TEST(Comparison, TellsLargestAndMeanDifferencePerChannel) {
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

TEST(Comparison, SamePicturesDoNotDiffer) {
    const Comparison result = Compare(MakePicture(1, 1, 3, {255, 255, 255}), MakeImage(1, 1));
    EXPECT_EQ(result.different, 0u);
    EXPECT_TRUE(DescribeComparison(result).ends_with("\n0 of 1 pixels differ\n"));
}

TEST(Comparison, DifferentSizesCanNotBeCompared) {
    try {
        Compare(Picture(2, 1, 3), MakeImage(1, 2));
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the page is 2 x 1 pixels, the picture 1 x 2; they can't be compared");
    }
}

}  // namespace orvex::tools::view
