// Pages of JPEG, BMP and GIF files, next to the same art as a PNG.
#include <cmath>
#include <cstdlib>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/made_pictures.h"
#include "tests/tools/orvexprint/orvexprint_fixture.h"
#include "tools/orvexprint/open_page.h"

namespace orvex::tools::print {

using testing::AllOf;
using testing::HasSubstr;

namespace {

constexpr uint32_t kWidth = 354;   // 30 mm at 300 dpi
constexpr uint32_t kHeight = 472;  // 40 mm
constexpr uint32_t kDensity = 11811;

// The tolerance of a JPEG of quality 95: levels of 255 by which a channel of a pixel may differ from its PNG,
// anywhere and on average.
constexpr int kMostDifference = 20;
constexpr double kMeanDifference = 0.75;

// Returns bars, squares of plain colors and a photograph's smooth colors.
Picture MakeArt() {
    Picture art(kWidth, kHeight, 3);
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            const auto wave = [&](double period) {
                return static_cast<uint8_t>(127 + 120 * std::sin((x + 0.7 * y) / period));
            };
            StoreColor(art.At(x, y), {wave(40), wave(57), wave(83)});
        }
    }
    FillRectangle(art, 0, 0, kWidth, 80, {255, 255, 255});
    for (uint32_t bar = 0; bar < 40; ++bar) FillRectangle(art, 10 + bar * 8, 10, 1 + bar % 5, 60, {0, 0, 0});
    const Rgb inks[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {0, 255, 255}, {255, 0, 255}, {255, 255, 0}};
    for (size_t i = 0; i < std::size(inks); ++i)
        FillRectangle(art, 20 + static_cast<int64_t>(i) * 50, 100, 40, 40, inks[i]);
    return art;
}

std::string AsPng(const Picture& art) {
    const PngRecipe recipe{.width = art.width,
                           .height = art.height,
                           .color = LCT_RGB,
                           .densityX = kDensity,
                           .densityY = kDensity};
    return AsText(MakePng(recipe, art.samples));
}

std::string AsJpeg(const Picture& art) {
    return WithJfifDensity(MakeJpeg(art), 1, 300, 300);
}

class PicturePageTest : public OrvexPrintTest {
  protected:
    std::string WriteFile(const char* name, const std::string& bytes) {
        WriteBytes(Path(name), bytes);
        return Text(name);
    }

    // Prints a page on a label of its size, and returns the print file.
    std::string PrintPage(const std::string& page) {
        RunWell({"--title", "t", "-o", Text("out.prn"), page});
        EXPECT_EQ(error, "");
        return OutputBytes();
    }

    // Draws a page on a bitmap of the art's size.
    static std::vector<uint32_t> DrawnPage(const std::string& page) {
        std::vector<uint32_t> pixels(size_t{kWidth} * kHeight, 0xFFFFFF);
        const PagePlacing placing = {
            .pageWidth = kWidth, .pageHeight = kHeight, .dpi = 300, .untaggedDpi = 300};
        OpenPage(PathFromUtf8(page))->Draw(placing, {pixels.data(), kWidth}, [](const std::string& note) {
            ADD_FAILURE() << note;
        });
        return pixels;
    }
};

}  // namespace

TEST_F(PicturePageTest, OfABmpPrintsLikeThePng) {
    const Picture art = MakeArt();
    const std::string png = PrintPage(WriteFile("art.png", AsPng(art)));
    EXPECT_TRUE(PrintPage(WriteFile("art.bmp", MakeBmp(art, kDensity))) == png);
}

TEST_F(PicturePageTest, OfAGifPrintsLikeThePng) {
    const std::vector<uint32_t> colors = {0xFFFFFF, 0x000000, 0xFF0000, 0x123456};
    Picture art(kWidth, kHeight, 3);
    std::vector<uint8_t> indexes;
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            const auto index = static_cast<uint8_t>((x / 7 + y / 5) % colors.size());
            indexes.push_back(index);
            const uint32_t color = colors[index];
            StoreColor(art.At(x, y), {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                                      static_cast<uint8_t>(color)});
        }
    }
    const std::string png = PrintPage(WriteFile("art.png", AsPng(art)));
    const std::string gif = MakeGif(kWidth, kHeight, indexes, colors);
    EXPECT_TRUE(PrintPage(WriteFile("art.gif", gif)) == png) << "at the job's resolution";
}

TEST_F(PicturePageTest, OfAJpegIsThatOfThePngWithinTheTolerance) {
    const Picture art = MakeArt();
    const std::vector<uint32_t> png = DrawnPage(WriteFile("art.png", AsPng(art)));
    const std::vector<uint32_t> jpeg = DrawnPage(WriteFile("art.jpg", AsJpeg(art)));
    int most = 0;
    double sum = 0;
    for (size_t i = 0; i < png.size(); ++i) {
        for (int shift = 0; shift < 24; shift += 8) {
            const int difference = std::abs(static_cast<int>(png[i] >> shift & 0xFF) -
                                            static_cast<int>(jpeg[i] >> shift & 0xFF));
            most = std::max(most, difference);
            sum += difference;
        }
    }
    EXPECT_LE(most, kMostDifference);
    EXPECT_LE(sum / (static_cast<double>(png.size()) * 3), kMeanDifference);
    EXPECT_GT(sum, 0) << "a JPEG loses something";
}

TEST_F(PicturePageTest, HasTheRealSizeThatTheFileStates) {
    const Picture art = MakeArt();
    const std::string turned =
        WriteFile("turned.jpg", WithSegment(MakeJpeg(art), 0xE1, MakeExif(6, 3000, 3000)));
    for (const auto& [file, label] :
         {std::pair<std::string, const char*>{WriteFile("a.jpg", AsJpeg(art)), "30.0 x 40.0 mm"},
          {WriteFile("a.bmp", MakeBmp(art, 5906)), "59.9 x 79.9 mm"},
          {turned, "40.0 x 30.0 mm"}}) {
        RunWell({"--dry-run", file});
        EXPECT_THAT(out, HasSubstr(std::string("Label: 300 dpi, ") + label)) << file;
    }
    RunWell({"--dry-run", "--size", "30x40mm", "--rotate", "auto", turned});
    EXPECT_THAT(
        out,
        HasSubstr("turned.jpg: 354 x 472 pixels, 0 from the left, 0 from the top, turned by a quarter\n"));
}

TEST_F(PicturePageTest, SaysWhatBecomesOfAColorProfile) {
    const std::string profile = std::string("ICC_PROFILE\0\1\1", 14) + "no profile at all";
    const std::string jpeg = WriteFile("a.jpg", WithSegment(AsJpeg(MakeArt()), 0xE2, profile));
    RunWell({"-o", Text("out.prn"), jpeg});
    EXPECT_THAT(error, AllOf(HasSubstr("page 1"), HasSubstr("has a colour profile"),
                             HasSubstr("colours are taken for sRGB")));
}

TEST_F(PicturePageTest, RefusesKindsThatAreNotReadWithAWayOut) {
    using namespace std::string_literals;
    EXPECT_EQ(Run({"-o", Text("out.prn"), WriteFile("a.tif", "II*\0"s)}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("a.tif") +
                         " is a TIFF file, which is not read; convert it to PNG first, as ./print does\n");
    EXPECT_EQ(Run({"-o", Text("out.prn"), WriteFile("a.txt", "a text of more than a few letters")}),
              kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: " + Text("a.txt") +
                  " is of no kind that can be printed; pages are PNG, JPEG, BMP, GIF and EMF files, and "
                  "for ./print TIFF, WebP, PDF and SVG files as well\n");
    EXPECT_EQ(Run({"-o", Text("out.prn"), WriteFile("a.png", "")}), kExitFailed);
    EXPECT_EQ(error, "orvexprint: " + Text("a.png") + " is empty\n");
    EXPECT_EQ(Run({"-o", Text("out.prn"), WriteFile("a.jpg", "\xFF\xD8\xFF")}), kExitFailed);
    EXPECT_EQ(error,
              "orvexprint: " + Text("a.jpg") + " is a damaged JPEG file: it ends before its picture does\n");
    EXPECT_TRUE(NothingWasWritten());
}

}  // namespace orvex::tools::print
