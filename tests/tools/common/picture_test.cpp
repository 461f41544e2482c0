#include "tools/common/picture.h"

#include <gtest/gtest.h>

#include "tests/tools/common/made_picture.h"

namespace orvex::tools {

namespace {

Picture Reduce(uint32_t width, uint32_t height, uint32_t channels, uint32_t scale, const Samples& samples) {
    Reducer reducer(width, height, channels, scale);
    for (uint32_t y = 0; y < height; ++y) {
        std::copy_n(samples.begin() + y * width * channels, width * channels, reducer.Line().begin());
        reducer.TakeLine();
    }
    return reducer.Finish();
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

TEST(Reducer, GroupsAtTheEdgesMayBeSmaller) {
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

TEST(Picture, RectanglesAreClipped) {
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

}  // namespace orvex::tools
