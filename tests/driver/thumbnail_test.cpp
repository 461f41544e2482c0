// The thumbnail of a job's first page, out of the job header that carries it.

#include <cstring>
#include <string>
#include <vector>

#include "driver/render/png_encoder/png_encoder.h"
#include "tests/kit/driver_fixture.h"
#include "tests/kit/picture.h"
#include "tests/plain/plain_colors.h"
#include "tests/plain/plain_reduction.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

namespace {

class Thumbnail : public DriverTest {
  protected:
    Thumbnail() { Configure(""); }

    void Configure(const std::string& limits) {
        installation.Write("settings.inf", "[Driver]\nAdd_Thumb=1\n" + limits);
    }

    // Sends a page to a print engine that refuses it once the header is written. Returns the base64 text of
    // the header's thumbnail, empty without one. Only the thumbnail's own lines stay in `lines`.
    std::string Make(const std::vector<uint32_t>& pixels, int32_t width, int32_t height) {
        const auto device = StartPage(Mode());
        SURFOBJ surface = *device->Surface();
        surface.sizlBitmap = {width, height};
        surface.pvBits = surface.pvScan0 = const_cast<uint32_t*>(pixels.data());
        surface.lDelta = width * 4;
        Printer().written.clear();
        engine.onPageStart = [&] { engine.Output("@PJL COMMENT x"); };
        engine.Fail("PageStart", 1);
        LogLines();
        EXPECT_TRUE(Session().Hooks().sendPage(&surface));
        lines = LogLines();
        lines.erase(lines.begin(), std::find(lines.begin(), lines.end(),
                                             "[Info]  add page thumb " + std::to_string(width) + "x" +
                                                 std::to_string(height)));
        Session().EndDoc(*device);
        const std::string opening = "QRV_THUMBNAIL=\"";
        const size_t begin = Printer().written.find(opening);
        if (begin == std::string::npos) return "";
        const size_t text = begin + opening.size();
        return Printer().written.substr(text, Printer().written.find('"', text) - text);
    }

    // Makes the thumbnail of a page while every allocation of `bytes` bytes fails.
    std::string MakeWithout(size_t bytes, const std::vector<uint32_t>& pixels, int32_t width,
                            int32_t height) {
        int failures = 0;
        Session();
        Heap().OnAllocate([&](const char*, size_t size) { return size == bytes && ++failures > 0; });
        const std::string text = Make(pixels, width, height);
        Heap().OnAllocate({});
        EXPECT_EQ(failures, 1);
        return text;
    }

    std::vector<std::string> lines;
};

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

TEST_F(Thumbnail, DecodesToThePageReducedToItsLimits) {
    Configure("thumb_max_width=100\nthumb_max_height=100\n");
    std::vector<uint32_t> page = Gradient(400, 120);
    for (size_t i = 0; i < page.size(); ++i) page[i] ^= plain::Scramble(static_cast<uint32_t>(i)) & 0x1F1F1F;
    const std::string text = Make(page, 400, 120);
    const std::string png = DecodeBase64(text);
    const Picture picture = DecodePicture(png);
    ASSERT_EQ(picture.width, 100);
    ASSERT_EQ(picture.height, 30);
    // The encoder takes the bytes of a pixel as they lie in memory: blue comes first.
    EXPECT_EQ(memcmp(picture.rgba.data(), plain::Reduced(page, 400, 120, 2).data(), picture.rgba.size()), 0);
    lines.resize(6);
    EXPECT_THAT(lines, ElementsAre("[Info]  add page thumb 400x120", "[Info]  thumb scale 2",
                                   "[Info]  scaled image 100x30 4", "", "[Info]  pngencode 0",
                                   "[Info]  generated base64 png " + std::to_string(png.size()) + "->" +
                                       std::to_string(text.size())));
}

TEST_F(Thumbnail, OfASmallPageHasItsFullSize) {
    const Picture picture = DecodePicture(DecodeBase64(Make(Gradient(80, 60), 80, 60)));
    EXPECT_EQ(picture.width, 80);
    EXPECT_EQ(picture.height, 60);
    EXPECT_THAT(lines,
                AllOf(Contains("[Info]  thumb scale 0"), Not(Contains(StartsWith("[Info]  scaled image")))));
}

TEST_F(Thumbnail, OfAPageAsLargeAsTheDefaultLimitsIsItsOpaqueCopy) {
    std::vector<uint32_t> page = Gradient(800, 600);
    const Picture picture = DecodePicture(DecodeBase64(Make(page, 800, 600)));
    ASSERT_EQ(picture.width, 800);
    ASSERT_EQ(picture.height, 600);
    for (uint32_t& pixel : page) pixel |= 0xFF000000;
    EXPECT_EQ(memcmp(picture.rgba.data(), page.data(), picture.rgba.size()), 0);
}

TEST_F(Thumbnail, OfAPageSlightlyLargerThanTheDefaultLimitsIsHalfOfIt) {
    Make(Gradient(801, 10), 801, 10);
    EXPECT_THAT(lines, Contains("[Info]  scaled image 400x5 2"));
    Make(Gradient(10, 601), 10, 601);
    EXPECT_THAT(lines, Contains("[Info]  scaled image 5x300 2"));
}

TEST_F(Thumbnail, OfAPageThatIsReducedToNothingIsStillEncoded) {
    const std::string png = DecodeBase64(Make(Gradient(1700, 2), 1700, 2));
    ASSERT_GT(png.size(), 24u);
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x01\xA9\0\0\0\0", 8));  // 425 x 0
    EXPECT_THAT(lines, AllOf(Contains("[Info]  scaled image 425x0 4"), Contains("[Info]  pngencode 0")));
}

TEST_F(Thumbnail, IsNotMadeWithoutMemoryForItsPixels) {
    EXPECT_EQ(MakeWithout(80 * 60 * 4, Gradient(80, 60), 80, 60), "");
    EXPECT_THAT(lines, AllOf(Contains("[Info]  failed to alloc thumbnail bytes"),
                             Not(Contains(StartsWith("[Info]  pngencode")))));
}

TEST_F(Thumbnail, IsNotMadeWithoutMemoryForThePng) {
    EXPECT_EQ(MakeWithout(PngWorkspaceSize(80, 60), Gradient(80, 60), 80, 60), "");
    EXPECT_THAT(lines, AllOf(Contains("[Info]  pngencode 83"), Contains("[Info]  failed to generate png")));
}

TEST_F(Thumbnail, IsNotMadeWithoutMemoryForTheText) {
    const std::vector<uint32_t> page = Gradient(80, 60);
    const size_t png = DecodeBase64(Make(page, 80, 60)).size();
    EXPECT_EQ(MakeWithout(png * 4 / 3 + 5, page, 80, 60), "");
    EXPECT_THAT(lines, Contains("[Info]  failed to generate base64 png"));
}

}  // namespace orvex
