#include "tools/common/decoded_picture.h"

#include <gmock/gmock.h>

#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/made_pictures.h"
#include "tests/tools/common/thrown_text.h"

namespace orvex::tools {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

DecodedPicture Open(const std::string& file, uint64_t mostPixels = DecodedPicture::kMostPixels) {
    return DecodedPicture({file.begin(), file.end()}, "art", mostPixels);
}

std::vector<uint32_t> PixelsOf(DecodedPicture picture) {
    const PictureSize size = picture.Size();
    std::vector<uint32_t> pixels(size_t{size.width} * size.height);
    picture.ReadAll(pixels.data(), size.width);
    return pixels;
}

std::vector<uint32_t> PixelsIn(const std::string& file) {
    return PixelsOf(Open(file));
}

std::string OpeningError(const std::string& file) {
    return ThrownText<PageError>([&] { Open(file); });
}

// Returns a picture of 16 x 24 pixels in six squares of these grays, two in a row.
Picture Squares(const std::vector<uint8_t>& grays) {
    Picture picture(16, 24, 3);
    for (uint32_t y = 0; y < 24; ++y) {
        for (uint32_t x = 0; x < 16; ++x) {
            const uint8_t gray = grays[y / 8 * 2 + x / 8];
            StoreColor(picture.At(x, y), {gray, gray, gray});
        }
    }
    return picture;
}

// Returns the grays of the squares, rounded to multiples of 10, row by row.
std::vector<int> SquaresIn(const std::string& file) {
    DecodedPicture picture = Open(file);
    const PictureSize size = picture.Size();
    const std::vector<uint32_t> pixels = PixelsOf(std::move(picture));
    std::vector<int> grays;
    for (uint32_t y = 4; y < size.height; y += 8) {
        for (uint32_t x = 4; x < size.width; x += 8)
            grays.push_back((static_cast<int>(pixels[y * size.width + x] & 0xFF) + 5) / 10 * 10);
    }
    return grays;
}

double DensityAcross(const std::string& file) {
    const PictureSize size = Open(file).Size();
    return size.density ? size.density->x : 0;
}

// Returns a JPEG file with a frame of that many components, and no pixels.
std::string JpegOfComponents(uint8_t count) {
    ByteMaker file;
    file.Text("\xFF\xD8\xFF\xC0").Big16(8 + 3u * count).Text("\x08").Big16(8).Big16(8);
    file.Text(std::string(1, static_cast<char>(count)));
    for (uint8_t i = 1; i <= count; ++i) file.Text(std::string{static_cast<char>(i), '\x11', '\0'});
    return file.Text("\xFF\xD9").Bytes();
}

const Samples kColors = {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3, 10, 20, 30, 250, 251, 252};

}  // namespace

TEST(DecodedPicture, ReadsABmpAsItIs) {
    const std::string file = MakeBmp(MakePicture(3, 2, 3, kColors), 11811);
    EXPECT_THAT(PixelsIn(file), ElementsAre(0xFF0000, 0x00FF00, 0x0000FF, 0x010203, 0x0A141E, 0xFAFBFC));
    EXPECT_EQ(DensityAcross(file), 11811);
    EXPECT_EQ(DensityAcross(MakeBmp(MakePicture(3, 2, 3, kColors))), 0);
    std::string fromTop = file;
    fromTop.replace(22, 4, ByteMaker().U32(0xFFFFFFFE).Bytes());
    EXPECT_THAT(PixelsIn(fromTop), ElementsAre(0x010203, 0x0A141E, 0xFAFBFC, 0xFF0000, 0x00FF00, 0x0000FF));
}

TEST(DecodedPicture, ShowsTheLabelThroughTransparentParts) {
    const std::string bmp = MakeBmp(MakePicture(2, 1, 4, {0, 0, 0, 128, 1, 2, 3, 255}));
    EXPECT_THAT(PixelsIn(bmp), ElementsAre(0x7F7F7F, 0x010203));
    const std::string gif = MakeGif(2, 2, {0, 1, 2, 3}, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}, 1);
    EXPECT_THAT(PixelsIn(gif), ElementsAre(0xFF0000, 0xFFFFFF, 0x0000FF, 0x123456));
}

TEST(DecodedPicture, ReadsAJpegOfColorsOrGrays) {
    EXPECT_THAT(SquaresIn(MakeJpeg(Squares({0, 50, 100, 150, 200, 250}))),
                ElementsAre(0, 50, 100, 150, 200, 250));
    const std::string gray = MakeJpeg(MakePicture(8, 8, 1, Samples(64, 77)));
    EXPECT_THAT(PixelsIn(gray), testing::Each(0x4D4D4D));
    EXPECT_THAT(PixelsIn(MakeJpeg(MakePicture(8, 8, 3, Samples(192, 255)))), testing::Each(0xFFFFFF));
}

TEST(DecodedPicture, TurnsAJpegAsItsExifSays) {
    const std::string jpeg = MakeJpeg(Squares({10, 50, 100, 150, 200, 250}));
    const std::vector<int> expected[] = {{10, 50, 100, 150, 200, 250}, {50, 10, 150, 100, 250, 200},
                                         {250, 200, 150, 100, 50, 10}, {200, 250, 100, 150, 10, 50},
                                         {10, 100, 200, 50, 150, 250}, {200, 100, 10, 250, 150, 50},
                                         {250, 150, 50, 200, 100, 10}, {50, 150, 250, 10, 100, 200}};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const std::string turned = WithSegment(jpeg, 0xE1, MakeExif(orientation, 3000, 6000));
        EXPECT_EQ(SquaresIn(turned), expected[orientation - 1]) << orientation;
        const PictureSize size = Open(turned).Size();
        EXPECT_EQ(size.width, orientation < 5 ? 16u : 24u);
        EXPECT_NEAR(size.density->x * 0.0254, orientation < 5 ? 300 : 600, 1e-9);
    }
    for (const int orientation : {0, 9})
        EXPECT_EQ(SquaresIn(WithSegment(jpeg, 0xE1, MakeExif(orientation))), expected[0]);
}

TEST(DecodedPicture, HasTheDensityThatAJpegStates) {
    const std::string jpeg = MakeJpeg(Squares({0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(DensityAcross(jpeg), 0) << "JFIF states a ratio alone";
    EXPECT_NEAR(DensityAcross(WithJfifDensity(jpeg, 1, 300, 300)), 300 / 0.0254, 1e-9);
    EXPECT_NEAR(DensityAcross(WithJfifDensity(jpeg, 2, 118, 118)), 11800, 1e-9);
    EXPECT_EQ(DensityAcross(WithJfifDensity(jpeg, 1, 0, 300)), 0);
    const std::string both = WithSegment(WithJfifDensity(jpeg, 1, 300, 300), 0xE1, MakeExif(1, 720, 720));
    EXPECT_NEAR(DensityAcross(both), 300 / 0.0254, 1e-9) << "JFIF comes first";
    EXPECT_EQ(DensityAcross(WithSegment(jpeg, 0xE1, MakeExif(1).substr(0, 30))), 0) << "a cut directory";
}

TEST(DecodedPicture, PutsAColorProfileTogether) {
    const auto part = [](char number, const char* bytes) {
        return std::string("ICC_PROFILE\0", 12) + number + '\2' + bytes;
    };
    const std::string jpeg = WithSegment(
        WithSegment(MakeJpeg(Squares({0, 0, 0, 0, 0, 0})), 0xE2, part(1, "ab")), 0xE2, part(2, "cd"));
    EXPECT_THAT(Open(jpeg).Colors().profile, ElementsAre('a', 'b', 'c', 'd'));
    EXPECT_FALSE(Open(jpeg).Colors().grayFile);
    EXPECT_TRUE(Open(JpegOfComponents(1)).Colors().grayFile);
    DecodedPicture converted = Open(MakeBmp(MakePicture(1, 1, 3, {1, 2, 3})));
    converted.ConvertColors([](uint32_t* pixels, size_t count) {
        for (size_t i = 0; i < count; ++i) pixels[i] += 0x010101;
    });
    EXPECT_THAT(PixelsOf(std::move(converted)), ElementsAre(0x020304));
}

TEST(DecodedPicture, SaysWhatToDoWithOtherKinds) {
    using namespace std::string_literals;
    const std::string convert = " file, which is not read; convert it to PNG first, as ./print does";
    EXPECT_EQ(OpeningError("II*\0...."s), "art is a TIFF" + convert);
    EXPECT_EQ(OpeningError("MM\0*...."s), "art is a TIFF" + convert);
    EXPECT_EQ(OpeningError("RIFF....WEBPVP8 "), "art is a WebP" + convert);
    EXPECT_EQ(
        OpeningError(JpegOfComponents(4)),
        "art is a JPEG file in CMYK, and the driver takes RGB; convert it to sRGB first, as ./print does");
    std::string packed = MakeBmp(MakePicture(3, 2, 3, kColors));
    packed.replace(30, 4, ByteMaker().U32(1).Bytes());
    EXPECT_EQ(
        OpeningError(packed),
        "art is a BMP file that is damaged or packed in a way that is not read; convert it to PNG first");
}

TEST(DecodedPicture, RefusesMorePixelsBeforeItTakesMemoryForThem) {
    EXPECT_EQ(
        ThrownText([] { Open(MakeBmp(MakePicture(3, 2, 3, kColors)), 5); }),
        "art has 3 x 2 pixels, and a BMP file, which is decoded in memory, may have 5; convert it to PNG "
        "first");
    std::string gif = MakeGif(1, 1, {0}, {1, 2, 3, 4});
    gif.replace(6, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_THAT(OpeningError(gif), HasSubstr("has 65535 x 65535 pixels, and a GIF file, which is decoded in "
                                             "memory, may have 64,000,000"));
    gif.replace(6, 4, std::string(4, '\0'));
    EXPECT_EQ(OpeningError(gif), "art is a GIF file without pixels");
}

TEST(DecodedPicture, RefusesAJpegWithATableOfTooManyCodes) {
    const std::string jpeg = MakeJpeg(Squares({0, 50, 100, 150, 200, 250}));
    const auto tableOf = [&](const std::vector<uint8_t>& counts, size_t codes) {
        std::string table(17 + codes, '\0');
        std::copy(counts.begin(), counts.end(), table.begin() + 1);
        return OpeningError(WithSegment(jpeg, 0xC4, table));
    };
    const char kError[] = "art is a damaged JPEG file: it has a table of too many codes";
    EXPECT_EQ(tableOf({0, 0, 0, 0, 0, 0, 0, 255, 1}, 256), "");
    EXPECT_EQ(tableOf({0, 0, 0, 0, 0, 0, 0, 255, 2}, 257), kError);
    EXPECT_EQ(tableOf({0, 0, 0, 0, 0, 0, 0, 2}, 1), kError) << "which the segment does not hold";
}

TEST(DecodedPicture, RefusesFilesThatEndBeforeTheirPicture) {
    const std::string files[] = {MakeJpeg(Squares({0, 50, 100, 150, 200, 250})),
                                 MakeBmp(MakePicture(3, 2, 3, kColors)),
                                 MakeGif(2, 2, {0, 1, 2, 3}, {0, 1, 2, 3})};
    const size_t trailers[] = {1, 1, 2};  // bytes whose loss is noticed; a GIF has a byte after its picture
    const char* const kinds[] = {"JPEG", "BMP", "GIF"};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(OpeningError(files[i]), "");
        for (const size_t size : {files[i].size() - trailers[i], files[i].size() / 2, size_t{30}}) {
            EXPECT_EQ(OpeningError(files[i].substr(0, size)),
                      std::string("art is a damaged ") + kinds[i] + " file: it ends before its picture does");
        }
    }
}

}  // namespace orvex::tools
