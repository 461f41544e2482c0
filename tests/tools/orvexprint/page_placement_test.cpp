#include "tools/orvexprint/page_placement.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/thrown_text.h"

namespace orvex::tools::print {

using testing::Each;
using testing::ElementsAre;

namespace {

RasterImage Image(uint32_t width, uint32_t height, std::optional<PixelDensity> density = std::nullopt) {
    RasterImage image = MakeImage(width, height);
    image.density = density;
    return image;
}

RasterImage Row(const std::vector<uint32_t>& pixels) {
    RasterImage image = MakeImage(static_cast<uint32_t>(pixels.size()), 1);
    std::copy(pixels.begin(), pixels.end(), image.pixels.get());
    return image;
}

// A page of 100 mm x 50 mm at 300 dpi.
constexpr PagePlacing kPage = {.pageWidth = 1181, .pageHeight = 591, .dpi = 300, .untaggedDpi = 300};

std::string Complaint(const RasterImage& image, const PagePlacing& placing) {
    return ThrownText<PageError>([&] { FindPlace(image, placing); });
}

}  // namespace

TEST(Resample, LeavesAPictureOfTheRightSizeAlone) {
    const RasterImage image = Row({0x112233, 0x445566, 0x778899});
    EXPECT_EQ(PixelsOf(Resample(image, 3, 1, Enlarging::kNearest)), PixelsOf(image));
    EXPECT_EQ(PixelsOf(Resample(image, 3, 1, Enlarging::kBlend)), PixelsOf(image));
}

TEST(Resample, AveragesTheAreaThatAPixelCovers) {
    EXPECT_THAT(PixelsOf(Resample(Row({0, 0xFFFFFF, 0xFF0000, 0x0000FF}), 2, 1, Enlarging::kNearest)),
                ElementsAre(0x808080u, 0x800080u));
    // Three pixels become two: each covers a pixel and a half.
    EXPECT_THAT(PixelsOf(Resample(Row({0, 0x0000FF, 0}), 2, 1, Enlarging::kNearest)),
                ElementsAre(0x55u, 0x55u));
    EXPECT_THAT(PixelsOf(Resample(Row({90, 0, 0}), 1, 1, Enlarging::kNearest)), ElementsAre(30u));
}

TEST(Resample, RepeatsPixelsToEnlarge) {
    EXPECT_THAT(PixelsOf(Resample(Row({1, 2}), 6, 1, Enlarging::kNearest)),
                ElementsAre(1u, 1u, 1u, 2u, 2u, 2u));
    EXPECT_THAT(PixelsOf(Resample(Row({1, 2}), 3, 2, Enlarging::kNearest)),
                ElementsAre(1u, 2u, 2u, 1u, 2u, 2u));
}

TEST(Resample, BlendsPixelsToEnlargeSmoothly) {
    EXPECT_THAT(PixelsOf(Resample(Row({0, 100}), 4, 1, Enlarging::kBlend)), ElementsAre(0u, 25u, 75u, 100u));
    EXPECT_THAT(PixelsOf(Resample(Row({7}), 3, 2, Enlarging::kBlend)), Each(7u));
}

TEST(Resample, ChangesEachAxisInItsOwnWay) {
    RasterImage image = MakeImage(2, 4);
    for (uint32_t y = 0; y < 4; ++y) {
        for (uint32_t x = 0; x < 2; ++x) image.Row(y)[x] = x * 100 + y * 10;
    }
    // Twice as wide, half as high.
    EXPECT_THAT(PixelsOf(Resample(image, 4, 2, Enlarging::kNearest)),
                ElementsAre(5u, 5u, 105u, 105u, 25u, 25u, 125u, 125u));
}

TEST(Resample, KeepsAPlainColorAtEverySize) {
    RasterImage image = MakeImage(13, 7);
    std::fill_n(image.pixels.get(), 13 * 7, 0xC08040u);
    for (const uint32_t width : {1u, 5u, 12u, 14u, 100u}) {
        for (const uint32_t height : {1u, 3u, 8u, 50u}) {
            EXPECT_THAT(PixelsOf(Resample(image, width, height, Enlarging::kBlend)), Each(0xC08040u));
            EXPECT_THAT(PixelsOf(Resample(image, width, height, Enlarging::kNearest)), Each(0xC08040u));
        }
    }
}

TEST(PagePlacement, PutsAPictureInTheMiddleAtItsRealSize) {
    // 50 mm x 25 mm at 600 dpi.
    const PagePlace place = FindPlace(Image(1181, 591, PixelDensity{23622, 23622}), kPage);
    EXPECT_EQ(place.width, 591u);
    EXPECT_EQ(place.height, 296u);
    EXPECT_EQ(place.left, 295u);
    EXPECT_EQ(place.top, 147u);
}

TEST(PagePlacement, FollowsADensityThatDiffersByAxis) {
    const PagePlace place = FindPlace(Image(200, 200, PixelDensity{23622, 11811}), kPage);
    EXPECT_EQ(place.width, 100u);
    EXPECT_EQ(place.height, 200u);
}

TEST(PagePlacement, UsesTheGivenResolutionForAPictureThatStatesNone) {
    EXPECT_EQ(FindPlace(Image(100, 100), kPage).width, 100u);
    PagePlacing screen = kPage;
    screen.untaggedDpi = 96;
    EXPECT_EQ(FindPlace(Image(100, 100), screen).width, 313u);
}

TEST(PagePlacement, CutsNothingFromAPictureOfTheLabelsOwnSize) {
    const PagePlace exact = FindPlace(Image(1181, 591, PixelDensity{11811, 11811}), kPage);
    EXPECT_EQ(exact.width, 1181u);
    EXPECT_EQ(exact.left, 0u);
    // Another program's rounding may give a pixel more.
    EXPECT_EQ(FindPlace(Image(1182, 592, PixelDensity{11811, 11811}), kPage).width, 1181u);
}

TEST(PagePlacement, RefusesAPictureThatIsLargerThanTheLabel) {
    EXPECT_EQ(Complaint(Image(1200, 300), kPage),
              "measures 101.6 x 25.4 mm and is larger than the label of 100.0 x 50.0 mm; --fit scales it");
    EXPECT_EQ(
        Complaint(Image(300, 1200, PixelDensity{1, 1}), kPage),
        "measures 300000.0 x 1200000.0 mm and is larger than the label of 100.0 x 50.0 mm; --fit scales it");
}

TEST(PagePlacement, RefusesAPictureSmallerThanAPixel) {
    EXPECT_EQ(Complaint(Image(1, 1, PixelDensity{4e9, 11811}), kPage),
              "is smaller than a pixel of the printer: 1 x 1 pixels at 101600000 x 300 dpi; --fit scales it");
}

TEST(PagePlacement, FitsAPictureToTheLabelWhenAsked) {
    PagePlacing fit = kPage;
    fit.fit = true;
    const PagePlace wide = FindPlace(Image(4000, 1000), fit);
    EXPECT_EQ(wide.width, 1181u);
    EXPECT_EQ(wide.height, 295u);
    EXPECT_EQ(wide.top, 148u);
    const PagePlace tall = FindPlace(Image(1, 1000), fit);
    EXPECT_EQ(tall.width, 1u);
    EXPECT_EQ(tall.height, 591u);
    EXPECT_EQ(FindPlace(Image(10, 5, PixelDensity{4e9, 4e9}), fit).width, 1181u);
}

TEST(PagePlacement, DrawsThePictureAndLeavesTheRestAlone) {
    std::vector<uint32_t> page(8 * 5, 0xFFFFFF);
    const PagePlacing placing = {.pageWidth = 6, .pageHeight = 5, .dpi = 300, .untaggedDpi = 150};
    DrawPage(Row({0x0000AA, 0x0000BB}), placing, page.data(), 8);
    const uint32_t w = 0xFFFFFF;
    EXPECT_THAT(page, ElementsAre(w, w, w, w, w, w, w, w,              //
                                  w, 0xAA, 0xAA, 0xBB, 0xBB, w, w, w,  //
                                  w, 0xAA, 0xAA, 0xBB, 0xBB, w, w, w,  //
                                  w, w, w, w, w, w, w, w,              //
                                  w, w, w, w, w, w, w, w));
}

}  // namespace orvex::tools::print
