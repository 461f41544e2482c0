#include "driver/render/thumbnail.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "driver/render/pixel_reduction.h"
#include "tests/kit/allocation_failure.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/picture.h"
#include "tools/host/import_patch.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {

struct Thumbnail {
    int32_t result;
    std::string text;
};

Thumbnail Build(const std::vector<uint32_t>& pixels, int32_t width, int32_t height) {
    char* text = nullptr;
    size_t length = 0;
    const int32_t result = BuildPageThumbnail(pixels.data(), width, height, &text, &length);
    Thumbnail thumbnail{result, text == nullptr ? "" : std::string(text, length)};
    EXPECT_TRUE(text == nullptr || text[length] == '\0');
    free(text);
    return thumbnail;
}

std::vector<uint32_t> Gradient(int32_t width, int32_t height) {
    std::vector<uint32_t> pixels;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            pixels.push_back(
                static_cast<uint32_t>((x * 7 & 0xFF) << 16 | (y * 5 & 0xFF) << 8 | ((x + y) * 3 & 0xFF)));
        }
    }
    return pixels;
}

}  // namespace

TEST(ThumbnailScale, IsGovernedByTheSideThatExceedsItsLimitByMore) {
    EXPECT_EQ(ThumbnailScale(4000, 2400, 800, 600), 3);  // 4000, 2000, 1000, 500
    EXPECT_EQ(ThumbnailScale(2400, 4000, 800, 600), 3);  // 4000, 2000, 1000, 500
    EXPECT_EQ(ThumbnailScale(800, 600, 800, 600), 0);
    EXPECT_EQ(ThumbnailScale(801, 600, 800, 600), 1);
    EXPECT_EQ(ThumbnailScale(800, 601, 800, 600), 1);
}

TEST(ThumbnailScale, ChecksOnlyTheGoverningSide) {
    EXPECT_EQ(ThumbnailScale(1000, 1000, 300, 999), 2);
    EXPECT_EQ(ThumbnailScale(3204, 2403, 800, 600), 2);  // the height when both exceed their limits alike
}

TEST(ThumbnailScale, TruncatesALimitWithAFraction) {
    EXPECT_EQ(ThumbnailScale(801, 1, 800.9, 600), 1);
}

TEST(ThumbnailScale, IsOffBelowALimitOfAHundred) {
    EXPECT_EQ(ThumbnailScale(4000, 2400, 99.9, 600), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, 800, 0), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, 800, -1), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, std::numeric_limits<double>::quiet_NaN(), 600), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, 100, 100), 6);
}

TEST(ThumbnailScale, HoldsForAbsurdLimits) {
    EXPECT_EQ(ThumbnailScale(4000, 2400, 1e300, 1e300), 0);
    EXPECT_EQ(ThumbnailScale(4000, 2400, std::numeric_limits<double>::infinity(), 600), 2);
}

TEST(Thumbnail, DecodesToThePageReducedToItsLimits) {
    const InstallationFixture installation;
    installation.WriteSettings("[Driver]\nthumb_max_width=100\nthumb_max_height=100\n");
    const std::vector<uint32_t> page = Gradient(400, 120);
    LogCapture log;
    const Thumbnail thumbnail = Build(page, 400, 120);
    EXPECT_EQ(thumbnail.result, 1);

    const Picture picture = DecodePicture(DecodeBase64(thumbnail.text));
    ASSERT_EQ(picture.width, 100);
    ASSERT_EQ(picture.height, 30);
    std::vector<uint32_t> expected(100 * 30);
    ReducePixels(page.data(), 400, 120, 2, expected.data());
    // The encoder takes the bytes of a pixel as they lie in memory: blue comes first.
    EXPECT_EQ(memcmp(picture.rgba.data(), expected.data(), picture.rgba.size()), 0);

    const size_t png = DecodeBase64(thumbnail.text).size();
    EXPECT_THAT(log.TakeLines(), ElementsAre("[Info]  add page thumb 400x120", "[Info]  thumb scale 2",
                                             "[Info]  scaled image 100x30 4", "", "[Info]  pngencode 0",
                                             "[Info]  generated base64 png " + std::to_string(png) + "->" +
                                                 std::to_string(thumbnail.text.size())));
}

TEST(Thumbnail, OfASmallPageIsItsFullSizeCopy) {
    const InstallationFixture installation;
    const std::vector<uint32_t> page = Gradient(80, 60);
    LogCapture log;
    const Picture picture = DecodePicture(DecodeBase64(Build(page, 80, 60).text));
    EXPECT_EQ(picture.width, 80);
    EXPECT_EQ(picture.height, 60);
    EXPECT_THAT(log.TakeLines(), AllOf(Contains("[Info]  thumb scale 0"),
                                       Not(Contains(testing::StartsWith("[Info]  scaled image")))));
}

TEST(Thumbnail, IsNotScaledWhenALimitTurnsThatOff) {
    const InstallationFixture installation;
    installation.WriteSettings("[Driver]\nthumb_max_width=99\n");
    LogCapture log;
    const Picture picture = DecodePicture(DecodeBase64(Build(Gradient(900, 10), 900, 10).text));
    EXPECT_EQ(picture.width, 900);
    EXPECT_THAT(log.TakeLines(), AllOf(Contains("[Info]  thumb scale 0"),
                                       Not(Contains(testing::StartsWith("[Info]  scaled image")))));
}

TEST(Thumbnail, OfALargePageIsAnEighthOfItByTheDefaultLimits) {
    const InstallationFixture installation;
    LogCapture log;
    const Picture picture = DecodePicture(DecodeBase64(Build(Gradient(4000, 2400), 4000, 2400).text));
    EXPECT_EQ(picture.width, 500);
    EXPECT_EQ(picture.height, 300);
    EXPECT_THAT(log.TakeLines(), Contains("[Info]  scaled image 500x300 8"));
}

TEST(Thumbnail, OfAPageAsLargeAsTheDefaultLimitsIsItsOpaqueCopy) {
    const InstallationFixture installation;
    std::vector<uint32_t> page = Gradient(800, 600);
    const Picture picture = DecodePicture(DecodeBase64(Build(page, 800, 600).text));
    ASSERT_EQ(picture.width, 800);
    ASSERT_EQ(picture.height, 600);
    for (uint32_t& pixel : page) pixel |= 0xFF000000;
    EXPECT_EQ(memcmp(picture.rgba.data(), page.data(), picture.rgba.size()), 0);
}

TEST(Thumbnail, OfAPageALittleLargerThanTheDefaultLimitsIsHalfOfIt) {
    const InstallationFixture installation;
    LogCapture log;
    Build(Gradient(801, 10), 801, 10);
    EXPECT_THAT(log.TakeLines(), Contains("[Info]  scaled image 400x5 2"));
    Build(Gradient(10, 601), 10, 601);
    EXPECT_THAT(log.TakeLines(), Contains("[Info]  scaled image 5x300 2"));
}

TEST(Thumbnail, OfAPageThatIsReducedToNothingIsStillEncoded) {
    const InstallationFixture installation;
    LogCapture log;
    const Thumbnail thumbnail = Build(Gradient(1700, 2), 1700, 2);
    EXPECT_EQ(thumbnail.result, 1);
    const std::string png = DecodeBase64(thumbnail.text);
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x01\xA9\0\0\0\0", 8));  // 425 x 0
    EXPECT_THAT(log.TakeLines(),
                AllOf(Contains("[Info]  scaled image 425x0 4"), Contains("[Info]  pngencode 0")));
}

TEST(Thumbnail, IsNotMadeWithoutMemoryForItsPixels) {
    const InstallationFixture installation;
    const std::vector<uint32_t> page = Gradient(80, 60);
    LogCapture log;
    const AllocationFailure failure(80 * 60 * 4);
    const Thumbnail thumbnail = Build(page, 80, 60);
    EXPECT_EQ(failure.Count(), 1);
    EXPECT_EQ(thumbnail.result, 0);
    EXPECT_EQ(thumbnail.text, "");
    EXPECT_EQ(log.TakeLines().back(), "[Info]  failed to alloc thumbnail bytes");
}

TEST(Thumbnail, IsNotMadeWhenThePngIsNot) {
    const InstallationFixture installation;
    const std::vector<uint32_t> page = Gradient(80, 60);
    LogCapture log;
    const AllocationFailure failure(60 * (1 + 80 * 3));  // the encoder's filtered lines
    const Thumbnail thumbnail = Build(page, 80, 60);
    EXPECT_EQ(failure.Count(), 1);
    EXPECT_EQ(thumbnail.result, 1);
    EXPECT_EQ(thumbnail.text, "");
    EXPECT_THAT(log.TakeLines(),
                AllOf(Contains("[Info]  pngencode 83"), Contains("[Info]  failed to generate png")));
}

TEST(Thumbnail, IsNotMadeWhenTheBase64TextIsNot) {
    const InstallationFixture installation;
    const std::vector<uint32_t> page = Gradient(80, 60);
    const size_t png = DecodeBase64(Build(page, 80, 60).text).size();
    LogCapture log;
    const AllocationFailure failure(png * 4 / 3 + 5);
    const Thumbnail thumbnail = Build(page, 80, 60);
    EXPECT_EQ(failure.Count(), 1);
    EXPECT_EQ(thumbnail.result, 1);
    EXPECT_EQ(thumbnail.text, "");
    EXPECT_EQ(log.TakeLines().back(), "[Info]  failed to generate base64 png");
}

}  // namespace orvex
