#include "driver/render/pixel_reduction.h"

#include <gmock/gmock.h>

#include <limits>
#include <random>
#include <vector>

#include "tests/plain/plain_reduction.h"

namespace orvex {

using testing::ElementsAre;

namespace {

std::vector<uint32_t> RandomPixels(int32_t width, int32_t height) {
    std::mt19937 random(static_cast<uint32_t>(width * 7919 + height));
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t& pixel : pixels) pixel = static_cast<uint32_t>(random());
    return pixels;
}

void ExpectReduced(int32_t width, int32_t height, int32_t scale) {
    SCOPED_TRACE(testing::Message() << width << " x " << height << " by 2^" << scale);
    const std::vector<uint32_t> pixels = RandomPixels(width, height);
    const std::vector<uint32_t> expected = plain::Reduced(pixels, width, height, scale);
    std::vector<uint32_t> reduced(expected.size());
    ReducePixels(pixels.data(), width, height, scale, reduced.data());
    EXPECT_TRUE(reduced == expected);
}

}  // namespace

TEST(PixelReduction, TakesTheTruncatedMeansOfBlocksAndMakesThemOpaque) {
    const std::vector<uint32_t> pixels = {
        0x00000001, 0x11000002, 0x00FF0000, 0x00FF0000,  //
        0x22000003, 0x33000005, 0x00FF0000, 0x00FE0000,
    };
    uint32_t out[2];
    ReducePixels(pixels.data(), 4, 2, 1, out);
    EXPECT_THAT(out, ElementsAre(0xFF000002, 0xFFFE0000));  // 11 / 4, (3 * 255 + 254) / 4
}

TEST(PixelReduction, LeavesOutIncompleteBlocks) {
    std::vector<uint32_t> pixels(5 * 3, 0x00123456);
    pixels[4] = pixels[9] = pixels[14] = 0x00FFFFFF;
    std::vector<uint32_t> out(2, 0);
    ReducePixels(pixels.data(), 5, 3, 1, out.data());
    EXPECT_THAT(out, ElementsAre(0xFF123456, 0xFF123456));
}

TEST(PixelReduction, MakesAnUnscaledPageOpaqueAndChangesNothingElse) {
    const std::vector<uint32_t> pixels = {0x00123456, 0xAA654321};
    uint32_t out[2];
    ReducePixels(pixels.data(), 2, 1, 0, out);
    EXPECT_THAT(out, ElementsAre(0xFF123456, 0xFF654321));
}

TEST(PixelReduction, SumsLargeBlocksWithoutOverflow) {
    const std::vector<uint32_t> pixels(512 * 512, 0x00FFFEFD);
    uint32_t out[1];
    ReducePixels(pixels.data(), 512, 512, 9, out);
    EXPECT_EQ(out[0], 0xFFFFFEFDu);
}

TEST(PixelReduction, EqualsThePlainMeanAtEveryScaleWithAnyRemainder) {
    for (int32_t scale = 0; scale <= 9; ++scale) {
        const int32_t side = 1 << scale;
        for (const int32_t width : {side - 1, side, 2 * side + side / 2, 5 * side - 1}) {
            for (const int32_t height : {side - 1, side, 2 * side + 1}) ExpectReduced(width, height, scale);
        }
    }
}

TEST(PixelReduction, ContinuesAfterTheBlocksThatAreSummedTogether) {
    for (const int32_t blocks : {511, 512, 513, 1025}) {
        ExpectReduced(blocks, 2, 0);
        ExpectReduced(2 * blocks + 1, 3, 1);
        ExpectReduced(4 * blocks + 3, 8, 2);
    }
}

TEST(ThumbnailScale, IsGovernedByTheSideThatExceedsItsLimitByMore) {
    EXPECT_EQ(ThumbnailScale(4000, 2400, 800, 600), 3);  // 4000, 2000, 1000, 500
    EXPECT_EQ(ThumbnailScale(2400, 4000, 800, 600), 3);  // 4000, 2000, 1000, 500
    EXPECT_EQ(ThumbnailScale(800, 600, 800, 600), 0);
    EXPECT_EQ(ThumbnailScale(801, 600, 800, 600), 1);
    EXPECT_EQ(ThumbnailScale(800, 601, 800, 600), 1);
}

TEST(ThumbnailScale, ChecksOnlyTheGoverningSide) {
    EXPECT_EQ(ThumbnailScale(1000, 1000, 300, 999), 2);
    EXPECT_EQ(ThumbnailScale(3204, 2403, 800, 600), 2);  // the height when both exceed their limits equally
}

TEST(ThumbnailScale, TruncatesALimitWithAFraction) {
    EXPECT_EQ(ThumbnailScale(801, 1, 800.9, 600), 1);
}

TEST(ThumbnailScale, IsZeroWhenALimitIsBelowAHundred) {
    EXPECT_EQ(ThumbnailScale(4000, 2400, 99.9, 600), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, 800, 0), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, 800, -1), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, std::numeric_limits<double>::quiet_NaN(), 600), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, 100, 100), 6);
}

TEST(ThumbnailScale, CopesWithAbsurdLimits) {
    EXPECT_EQ(ThumbnailScale(4000, 2400, 1e300, 1e300), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, std::numeric_limits<double>::infinity(), 600), 2);
}

}  // namespace orvex
