#include "driver/render/pixel_reduction.h"

#include <gmock/gmock.h>

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

TEST(PixelReduction, AreTruncatedMeansOfTheirBlocksAndOpaque) {
    const std::vector<uint32_t> pixels = {
        0x00000001, 0x11000002, 0x00FF0000, 0x00FF0000,  //
        0x22000003, 0x33000005, 0x00FF0000, 0x00FE0000,
    };
    uint32_t out[2];
    ReducePixels(pixels.data(), 4, 2, 1, out);
    EXPECT_THAT(out, ElementsAre(0xFF000002, 0xFFFE0000));  // 11 / 4, (3 * 255 + 254) / 4
}

TEST(PixelReduction, LeaveOutWhatIsNoWholeBlock) {
    std::vector<uint32_t> pixels(5 * 3, 0x00123456);
    pixels[4] = pixels[9] = pixels[14] = 0x00FFFFFF;
    std::vector<uint32_t> out(2, 0);
    ReducePixels(pixels.data(), 5, 3, 1, out.data());
    EXPECT_THAT(out, ElementsAre(0xFF123456, 0xFF123456));
}

TEST(PixelReduction, OfAnUnscaledPageGetAnOpaqueTopByteOnly) {
    const std::vector<uint32_t> pixels = {0x00123456, 0xAA654321};
    uint32_t out[2];
    ReducePixels(pixels.data(), 2, 1, 0, out);
    EXPECT_THAT(out, ElementsAre(0xFF123456, 0xFF654321));
}

TEST(PixelReduction, HoldFullSumsOfLargeBlocks) {
    const std::vector<uint32_t> pixels(512 * 512, 0x00FFFEFD);
    uint32_t out[1];
    ReducePixels(pixels.data(), 512, 512, 9, out);
    EXPECT_EQ(out[0], 0xFFFFFEFDu);
}

TEST(PixelReduction, IsThePlainMeanAtEveryScaleAndForWhateverIsLeftOver) {
    for (int32_t scale = 0; scale <= 9; ++scale) {
        const int32_t side = 1 << scale;
        for (const int32_t width : {side - 1, side, 2 * side + side / 2, 5 * side - 1}) {
            for (const int32_t height : {side - 1, side, 2 * side + 1}) ExpectReduced(width, height, scale);
        }
    }
}

TEST(PixelReduction, GoesOnBehindTheBlocksThatAreSummedAtOnce) {
    for (const int32_t blocks : {511, 512, 513, 1025}) {
        ExpectReduced(blocks, 2, 0);
        ExpectReduced(2 * blocks + 1, 3, 1);
        ExpectReduced(4 * blocks + 3, 8, 2);
    }
}

}  // namespace orvex
