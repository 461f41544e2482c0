#include "tools/orvexprint/page_placement.h"

#include <gmock/gmock.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/png_maker.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/number_text.h"
#include "tools/common/png_reader.h"

namespace orvex::tools::print {

using testing::Each;
using testing::ElementsAre;

namespace {

PictureSize Image(uint32_t width, uint32_t height, std::optional<PixelDensity> density = std::nullopt) {
    return {width, height, density};
}

RasterImage Row(const std::vector<uint32_t>& pixels) {
    RasterImage image = MakeImage(static_cast<uint32_t>(pixels.size()), 1);
    std::copy(pixels.begin(), pixels.end(), image.pixels.get());
    return image;
}

RasterImage Resample(const RasterImage& image, uint32_t width, uint32_t height, Enlarging enlarging) {
    uint32_t row = 0;
    Resampler resampler(image.width, image.height, width, height, enlarging,
                        [&](uint32_t* pixels) { std::copy_n(image.Row(row++), image.width, pixels); });
    RasterImage resampled = MakeImage(width, height);
    for (uint32_t y = 0; y < height; ++y) resampler.ReadRow(resampled.Row(y));
    EXPECT_EQ(row, image.height) << "every row is read, and read once";
    return resampled;
}

PixelDensity Dpi(double dpi) {
    return {std::round(dpi / kMetersPerInch), std::round(dpi / kMetersPerInch)};
}

// A page of 100 mm x 50 mm at 300 dpi.
constexpr PagePlacing kPage = {.pageWidth = 1181, .pageHeight = 591, .dpi = 300, .untaggedDpi = 300};

std::string Complaint(const PictureSize& image, const PagePlacing& placing) {
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
    EXPECT_EQ(place.Width(), 591u);
    EXPECT_EQ(place.Height(), 296u);
    EXPECT_EQ(place.left, 295u);
    EXPECT_EQ(place.top, 147u);
}

TEST(PagePlacement, FollowsADensityThatDiffersByAxis) {
    const PagePlace place = FindPlace(Image(200, 200, PixelDensity{23622, 11811}), kPage);
    EXPECT_EQ(place.Width(), 100u);
    EXPECT_EQ(place.Height(), 200u);
}

TEST(PagePlacement, UsesTheGivenResolutionForAPictureThatStatesNone) {
    EXPECT_EQ(FindPlace(Image(100, 100), kPage).Width(), 100u);
    PagePlacing screen = kPage;
    screen.untaggedDpi = 96;
    EXPECT_EQ(FindPlace(Image(100, 100), screen).Width(), 313u);
}

TEST(PagePlacement, CutsNothingFromAPictureOfTheLabelsOwnSize) {
    const PagePlace exact = FindPlace(Image(1181, 591, PixelDensity{11811, 11811}), kPage);
    EXPECT_EQ(exact.Width(), 1181u);
    EXPECT_EQ(exact.left, 0u);
    // Another program's rounding may give a pixel more.
    EXPECT_EQ(FindPlace(Image(1182, 592, PixelDensity{11811, 11811}), kPage).Width(), 1181u);
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
    EXPECT_EQ(wide.Width(), 1181u);
    EXPECT_EQ(wide.Height(), 295u);
    EXPECT_EQ(wide.top, 148u);
    const PagePlace tall = FindPlace(Image(1, 1000), fit);
    EXPECT_EQ(tall.Width(), 1u);
    EXPECT_EQ(tall.Height(), 591u);
    EXPECT_EQ(FindPlace(Image(10, 5, PixelDensity{4e9, 4e9}), fit).Width(), 1181u);
}

TEST(PagePlacement, NeverResamplesArtOfTheDevicesResolution) {
    const auto place = [](uint32_t width, uint32_t height, PixelDensity density, bool fit = false) {
        const PagePlacing label = {
            .pageWidth = 2362, .pageHeight = 3543, .dpi = 600, .untaggedDpi = 600, .fit = fit};
        return FindPlace(Image(width, height, density), label);
    };
    // A pixel more than the label of 100 mm x 150 mm, as rasterizers make it.
    for (const bool fit : {false, true}) {
        const PagePlace rounded = place(2363, 3544, Dpi(600), fit);
        EXPECT_EQ(rounded.across.scale, 1);
        EXPECT_EQ(rounded.down.scale, 1);
        EXPECT_EQ(rounded.across.used, 2362u);
        EXPECT_EQ(rounded.down.used, 3543u);
        EXPECT_EQ(rounded.Width(), 2362u);
    }
    // Files that state pixels per centimeter, in whole numbers.
    EXPECT_EQ(place(2000, 3000, {23600, 23600}).across.scale, 1);
    EXPECT_EQ(place(2000, 3000, {23600, 23600}).Height(), 3000u);
    EXPECT_EQ(place(2000, 3000, Dpi(598)).Height(), 3010u) << "another resolution";
    EXPECT_THROW(place(2364, 3543, Dpi(600)), PageError);
}

TEST(PagePlacement, TakesArtOfTheLabelAtOtherResolutions) {
    for (const double dpi : {203.0, 300.0, 360.0, 600.0}) {
        for (const uint32_t device : {300u, 600u}) {
            const auto pixels = [](double mm, double resolution) { return mm / 25.4 * resolution; };
            const PagePlacing label = {.pageWidth = static_cast<uint32_t>(pixels(100, device) + 0.5),
                                       .pageHeight = static_cast<uint32_t>(pixels(150, device) + 0.5),
                                       .dpi = device,
                                       .untaggedDpi = 300};
            const PagePlace place =
                FindPlace(Image(static_cast<uint32_t>(std::ceil(pixels(100, dpi))),
                                static_cast<uint32_t>(std::ceil(pixels(150, dpi))), Dpi(dpi)),
                          label);
            EXPECT_EQ(place.Width(), label.pageWidth) << dpi;
            EXPECT_EQ(place.Height(), label.pageHeight) << dpi;
        }
    }
}

TEST(PagePlacement, SaysHowAndWhyItResamples) {
    const auto text = [](const PictureSize& picture, PagePlacing placing) {
        return ResamplingText(picture, placing, FindPlace(picture, placing));
    };
    EXPECT_EQ(text(Image(100, 100), kPage), "");
    EXPECT_EQ(text(Image(100, 100, Dpi(203)), kPage),
              "enlarged 1.48 times: its resolution is 203 dpi, the job's is 300 dpi");
    EXPECT_EQ(text(Image(100, 100, Dpi(600)), kPage),
              "reduced 2.00 times: its resolution is 600 dpi, the job's is 300 dpi");
    EXPECT_EQ(text(Image(100, 100, Dpi(299)), kPage),
              "enlarged 1.0033 times: its resolution is 299 dpi, the job's is 300 dpi");
    EXPECT_EQ(
        text(Image(100, 100, PixelDensity{Dpi(600).x, Dpi(150).y}), kPage),
        "reduced 2.00 times in width and enlarged 2.00 times in height: its resolution is 600 x 150 dpi, "
        "the job's is 300 dpi");
    EXPECT_EQ(text(Image(100, 100, PixelDensity{Dpi(300).x, Dpi(150).y}), kPage),
              "enlarged 2.00 times in height: its resolution is 300 x 150 dpi, the job's is 300 dpi");
    EXPECT_EQ(text(Image(100, 100, PixelDensity{Dpi(150).x, Dpi(300).y}), kPage),
              "enlarged 2.00 times in width: its resolution is 150 x 300 dpi, the job's is 300 dpi");
    PagePlacing fit = kPage;
    fit.fit = true;
    EXPECT_EQ(text(Image(200, 100), fit), "enlarged 5.91 times: --fit scales it to the label");
}

TEST(PagePlacement, TurnsAPageThatFitsOnlyThen) {
    const PictureSize upright = Image(591, 1181);
    EXPECT_EQ(Complaint(upright, kPage),
              "measures 50.0 x 100.0 mm and is larger than the label of 100.0 x 50.0 mm; --rotate auto turns "
              "it by a quarter, and then it fits; --fit scales it");
    PagePlacing turning = kPage;
    turning.turning = Turning::kToFit;
    const PagePlace place = FindPlace(upright, turning);
    EXPECT_TRUE(place.turned);
    EXPECT_EQ(place.Width(), 1181u);
    EXPECT_EQ(place.Height(), 591u);
    EXPECT_FALSE(FindPlace(Image(400, 500), turning).turned) << "fits as it is";
    EXPECT_THROW(FindPlace(Image(600, 1200), turning), PageError) << "fits in no direction";
    turning.fit = true;
    EXPECT_TRUE(FindPlace(Image(400, 500), turning).turned) << "becomes larger";
    EXPECT_FALSE(FindPlace(Image(500, 400), turning).turned);
    EXPECT_FALSE(FindPlace(Image(500, 500), turning).turned);
}

namespace {

// Returns the page, 8 pixels from row to row, on which the picture is drawn.
std::vector<uint32_t> Drawn(const std::vector<uint8_t>& gray, PngRecipe recipe, const PagePlacing& placing) {
    recipe.color = LCT_GREY;
    std::vector<uint32_t> page(size_t{8} * placing.pageHeight, 0xFFFFFF);
    PngReader reader(std::make_unique<std::istringstream>(AsText(MakePng(recipe, gray))), "");
    DrawPage(reader, placing, page.data(), 8);
    for (uint32_t& pixel : page) pixel &= 0xFF;
    return page;
}

}  // namespace

TEST(PagePlacement, DrawsThePictureAndLeavesTheRestAlone) {
    const PagePlacing placing = {.pageWidth = 6, .pageHeight = 5, .dpi = 300, .untaggedDpi = 150};
    const uint32_t w = 0xFF;
    EXPECT_THAT(Drawn({0xAA, 0xBB}, {.width = 2}, placing),
                ElementsAre(w, w, w, w, w, w, w, w,              //
                            w, 0xAA, 0xAA, 0xBB, 0xBB, w, w, w,  //
                            w, 0xAA, 0xAA, 0xBB, 0xBB, w, w, w,  //
                            w, w, w, w, w, w, w, w,              //
                            w, w, w, w, w, w, w, w));
}

TEST(PagePlacement, DrawsWithoutTheLastLineAndColumnOfArtThatWasRoundedUp) {
    const PagePlacing placing = {.pageWidth = 3, .pageHeight = 2, .dpi = 300, .untaggedDpi = 300};
    for (const bool interlaced : {false, true}) {
        EXPECT_THAT(Drawn({1, 2, 3, 4,  //
                           5, 6, 7, 8,  //
                           9, 10, 11, 12},
                          {.width = 4, .height = 3, .interlaced = interlaced}, placing),
                    ElementsAre(1, 2, 3, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
                                5, 6, 7, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF));
    }
}

TEST(PagePlacement, DrawsATurnedPageClockwise) {
    PagePlacing placing = {
        .pageWidth = 5, .pageHeight = 3, .dpi = 300, .untaggedDpi = 300, .turning = Turning::kToFit};
    EXPECT_THAT(Drawn({1, 2, 3,  //
                       4, 5, 6,  //
                       7, 8, 9,  //
                       10, 11, 12, 13, 14, 15},
                      {.width = 3, .height = 5}, placing),
                ElementsAre(13, 10, 7, 4, 1, 0xFF, 0xFF, 0xFF,  //
                            14, 11, 8, 5, 2, 0xFF, 0xFF, 0xFF,  //
                            15, 12, 9, 6, 3, 0xFF, 0xFF, 0xFF));
    placing.pageWidth = 8;
    placing.pageHeight = 2;
    placing.dpi = 600;
    EXPECT_THAT(Drawn({1, 2, 3, 4}, {.width = 1, .height = 4}, placing),
                ElementsAre(4, 4, 3, 3, 2, 2, 1, 1,  //
                            4, 4, 3, 3, 2, 2, 1, 1))
        << "the same whether it is resampled";
}

TEST(PagePlacement, DrawsTallTurnedPagesInParts) {
    constexpr uint32_t kTall = 40;
    std::vector<uint8_t> gray;
    for (uint32_t i = 0; i < kTall; ++i) gray.push_back(static_cast<uint8_t>(i));
    const PagePlacing placing = {
        .pageWidth = kTall, .pageHeight = 1, .dpi = 300, .untaggedDpi = 300, .turning = Turning::kToFit};
    std::vector<uint32_t> page(kTall);
    PngReader reader(std::make_unique<std::istringstream>(
                         AsText(MakePng({.width = 1, .height = kTall, .color = LCT_GREY}, gray))),
                     "");
    DrawPage(reader, placing, page.data(), kTall);
    for (uint32_t x = 0; x < kTall; ++x) EXPECT_EQ(page[x] & 0xFF, kTall - 1 - x);
}

TEST(PagePlacement, ReadsRowsThatAreNotPrintedToo) {
    std::vector<uint8_t> whole =
        MakePng({.width = 3, .height = 3, .color = LCT_GREY}, std::vector<uint8_t>(9));
    whole.resize(whole.size() - 16);  // the end of the file
    const PagePlacing placing = {.pageWidth = 3, .pageHeight = 2, .dpi = 300, .untaggedDpi = 300};
    std::vector<uint32_t> page(6);
    PngReader reader(std::make_unique<std::istringstream>(AsText(whole)), "art");
    EXPECT_THROW(DrawPage(reader, placing, page.data(), 3), PageError);
}

}  // namespace orvex::tools::print
