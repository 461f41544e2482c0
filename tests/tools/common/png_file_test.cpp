#include "tools/common/png_file.h"

#include <gmock/gmock.h>

#include <cstring>
#include <sstream>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/made_picture.h"
#include "tests/tools/common/png_maker.h"
#include "tests/tools/common/thrown_text.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// Returns the decoder's error for a file; empty if it accepts the file.
std::string DecodingError(const std::vector<uint8_t>& file) {
    return ThrownText<PageError>([&] { DecodePng(file); });
}

// Makes the header of a PNG claim a size that its data does not have; the header's checksum is right.
std::vector<uint8_t> WithClaimedSize(std::vector<uint8_t> file, uint32_t width, uint32_t height) {
    for (int i = 0; i < 4; ++i) {
        file[16 + i] = static_cast<uint8_t>(width >> (24 - 8 * i));
        file[20 + i] = static_cast<uint8_t>(height >> (24 - 8 * i));
    }
    const unsigned checksum = lodepng_crc32(&file[12], 17);
    for (int i = 0; i < 4; ++i) file[29 + i] = static_cast<uint8_t>(checksum >> (24 - 8 * i));
    return file;
}

}  // namespace

TEST(PngFile, BecomesPixelsOfRedGreenAndBlue) {
    const RasterImage image = DecodePng(MakePng({.width = 2, .height = 2}, {1, 2, 3, 255, 4, 5, 6, 255,  //
                                                                            7, 8, 9, 255, 255, 0, 0, 255}));
    EXPECT_EQ(image.width, 2u);
    EXPECT_EQ(image.height, 2u);
    EXPECT_THAT(PixelsOf(image), ElementsAre(0x010203u, 0x040506u, 0x070809u, 0xFF0000u));
    EXPECT_FALSE(image.density);
}

TEST(PngFile, ShowsTheWhiteLabelWhereItIsTransparent) {
    const RasterImage image =
        DecodePng(MakePng({.width = 4, .height = 1}, {0, 0, 0, 0, 0, 0, 0, 255, 255, 0, 0, 128, 9, 9, 9, 1}));
    EXPECT_THAT(PixelsOf(image), ElementsAre(0xFFFFFFu, 0x000000u, 0xFF7F7Fu, 0xFEFEFEu));
}

TEST(PngFile, MayBeOfAnyColorType) {
    EXPECT_THAT(PixelsOf(DecodePng(MakePng({.width = 2, .color = LCT_GREY}, {0, 200}))),
                ElementsAre(0u, 0xC8C8C8u));
    EXPECT_THAT(PixelsOf(DecodePng(MakePng({.width = 8, .color = LCT_GREY, .bitDepth = 1}, {0x80})))[0],
                0xFFFFFFu);
    EXPECT_THAT(PixelsOf(DecodePng(MakePng({.width = 2, .color = LCT_GREY_ALPHA}, {0, 255, 0, 0}))),
                ElementsAre(0u, 0xFFFFFFu));
    EXPECT_THAT(PixelsOf(DecodePng(MakePng({.width = 1, .color = LCT_RGB}, {1, 2, 3}))),
                ElementsAre(0x010203u));
    EXPECT_THAT(PixelsOf(DecodePng(MakePng({.width = 2, .color = LCT_PALETTE}, {0, 1}))),
                ElementsAre(0u, 0xFF0000u));
    EXPECT_THAT(
        PixelsOf(DecodePng(MakePng({.width = 1, .color = LCT_RGB, .bitDepth = 16}, {1, 0, 2, 0, 3, 0}))),
        ElementsAre(0x010203u));
}

TEST(PngReader, ReadsAnInterlacedFileInWindowsOfRows) {
    constexpr uint32_t kWidth = 13, kHeight = 21;
    std::vector<uint8_t> samples(kWidth * kHeight * 4, 255);
    for (size_t i = 0; i < samples.size(); ++i) {
        if (i % 4 < 3) samples[i] = static_cast<uint8_t>(7 * i);
    }
    const std::string file =
        AsText(MakePng({.width = kWidth, .height = kHeight, .interlaced = true}, samples));
    for (const size_t windowPixels : {size_t{1}, size_t{2 * kWidth}, size_t{8 * kWidth}, size_t{1000}}) {
        PngReader reader(std::make_unique<std::istringstream>(file), "a.png", windowPixels);
        for (uint32_t y = 0; y < kHeight; ++y) {
            uint32_t row[kWidth];
            reader.ReadRow(row);
            for (uint32_t x = 0; x < kWidth; ++x) {
                const uint8_t* const rgb = &samples[4 * (y * kWidth + x)];
                ASSERT_EQ(row[x], uint32_t{rgb[0]} << 16 | uint32_t{rgb[1]} << 8 | rgb[2]) << x << ", " << y;
            }
        }
    }
}

TEST(PngFile, MayBeInterlaced) {
    std::vector<uint8_t> samples;
    for (int i = 0; i < 17 * 13; ++i) samples.push_back(static_cast<uint8_t>(i * 7));
    const PngRecipe plain{.width = 17, .height = 13, .color = LCT_GREY};
    PngRecipe interlaced = plain;
    interlaced.interlaced = true;
    EXPECT_EQ(PixelsOf(DecodePng(MakePng(plain, samples))),
              PixelsOf(DecodePng(MakePng(interlaced, samples))));
    // The smallest pictures have more passes than rows.
    EXPECT_EQ(DecodePng(MakePng({.width = 1, .height = 1, .color = LCT_GREY, .interlaced = true}, {5})).width,
              1u);
}

TEST(PngFile, HasADensityIfThatIsInMeters) {
    const std::vector<uint8_t> gray = {0};
    const auto density = [&](unsigned x, unsigned y, unsigned unit) {
        return DecodePng(
                   MakePng({.color = LCT_GREY, .densityX = x, .densityY = y, .densityUnit = unit}, gray))
            .density;
    };
    ASSERT_TRUE(density(11811, 23622, 1));
    EXPECT_EQ(density(11811, 23622, 1)->x, 11811);
    EXPECT_EQ(density(11811, 23622, 1)->y, 23622);
    EXPECT_FALSE(density(1, 1, 0)) << "only a shape";
    EXPECT_FALSE(density(0, 23622, 1)) << "no size at all";
}

TEST(PngFile, IsRefusedIfItIsNotAPng) {
    EXPECT_EQ(DecodingError({}), "is empty");
    EXPECT_EQ(DecodingError(std::vector<uint8_t>(100, 'x')), "is no PNG file");
}

TEST(PngFile, IsToldFromAPdfAndAnSvgByItsFirstBytes) {
    const auto errorOf = [](std::string file) {
        file.resize(100, '\n');
        return DecodingError({file.begin(), file.end()});
    };
    EXPECT_EQ(errorOf("%PDF-1.7\n1 0 obj"), "is a PDF; ./print renders it first");
    const std::string svg = "is an SVG; ./print renders it first";
    EXPECT_EQ(errorOf("<svg xmlns='http://www.w3.org/2000/svg'/>"), svg);
    EXPECT_EQ(errorOf("\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!-- a label -->\r\n<svg/>"), svg);
    EXPECT_EQ(errorOf("<?xml version='1.0'?><html/>"), "is no PNG file");
    EXPECT_EQ(errorOf("mentions %PDF- and <svg"), "is no PNG file");
}

TEST(PngFile, IsRefusedWhereverItIsTruncated) {
    const std::vector<uint8_t> whole = MakePlainPng(9, 9, 11811, 0x102030);
    for (size_t size = 1; size < whole.size() - 12; ++size) {
        EXPECT_THAT(DecodingError({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)}),
                    StartsWith("is a damaged"))
            << size;
    }
}

// Every chunk has a checksum. A file is read without a damaged chunk that does not concern its pixels.
TEST(PngFile, IsRefusedOrShowsTheSamePixelsAfterAChangeOfAnyByte) {
    const std::vector<uint8_t> whole = MakePlainPng(9, 9, 11811, 0x102030);
    const std::vector<uint32_t> pixels = PixelsOf(DecodePng(whole));
    constexpr size_t kDensityChunk = 33, kAfterDensity = 54;
    const size_t end = whole.size() - 12;
    for (size_t at = 0; at < whole.size(); ++at) {
        for (const int flip : {1, 0x80, 0xFF}) {
            std::vector<uint8_t> damaged = whole;
            damaged[at] ^= static_cast<uint8_t>(flip);
            try {
                const RasterImage image = DecodePng(damaged);
                EXPECT_EQ(PixelsOf(image), pixels) << at;
                EXPECT_TRUE((at >= kDensityChunk && at < kAfterDensity) || at >= end) << at;
                EXPECT_EQ(image.density.has_value(), at >= end) << at;
            } catch (const PageError& error) {
                EXPECT_THAT(error.what(), StartsWith("is ")) << at;
            }
        }
    }
}

TEST(PngFile, IsRefusedIfItClaimsToBeLargerThanAnyLabel) {
    const std::vector<uint8_t> tiny = MakePlainPng(2, 2, 0);
    EXPECT_EQ(DecodingError(WithClaimedSize(tiny, 2147483647, 2147483647)),
              "is larger than any label: a side has more than 200000 pixels");
    EXPECT_EQ(DecodingError(WithClaimedSize(tiny, 20000, 20000)),
              "is larger than any label: 20000 x 20000 pixels");
    EXPECT_THAT(DecodingError(WithClaimedSize(tiny, 0, 4)), StartsWith("is a damaged"));
}

TEST(PngFile, IsUnpackedNoFurtherThanItsSize) {
    // 4 MB of zeros after a header that claims one gray pixel.
    const std::vector<uint8_t> bomb =
        MakePng({.width = 2048, .height = 2048, .color = LCT_GREY}, std::vector<uint8_t>(2048 * 2048));
    EXPECT_THAT(PixelsOf(DecodePng(WithClaimedSize(bomb, 1, 1))), ElementsAre(0u));
    EXPECT_THAT(DecodingError(WithClaimedSize(bomb, 2048, 2049)), StartsWith("is a damaged"));
}

namespace {

EmbeddedColors ColorsIn(const std::function<void(LodePNGInfo&)>& embed) {
    const std::vector<uint8_t> png = MakePng({.color = LCT_GREY, .embed = embed}, {0});
    return PngReader(std::make_unique<std::istringstream>(AsText(png)), "").Colors();
}

}  // namespace

TEST(PngFile, TellsWhatItSaysAboutItsColors) {
    const EmbeddedColors none = ColorsIn(nullptr);
    EXPECT_FALSE(none.srgb || none.gamma || none.primaries || !none.profile.empty());
    EXPECT_TRUE(none.grayFile);
    EXPECT_TRUE(ColorsIn([](LodePNGInfo& info) { info.srgb_defined = 1, info.srgb_intent = 0; }).srgb);
    const EmbeddedColors measured = ColorsIn([](LodePNGInfo& info) {
        info.gama_defined = info.chrm_defined = 1;
        info.gama_gamma = 100000;
        info.chrm_white_x = 31270, info.chrm_white_y = 32900;
        info.chrm_red_x = 64000, info.chrm_red_y = 33000;
        info.chrm_green_x = 21000, info.chrm_green_y = 71000;
        info.chrm_blue_x = 15000, info.chrm_blue_y = 6000;
    });
    EXPECT_EQ(measured.gamma, 1.0);
    ASSERT_TRUE(measured.primaries);
    EXPECT_DOUBLE_EQ(measured.primaries->white.y, 0.329);
    EXPECT_DOUBLE_EQ(measured.primaries->green.x, 0.21);
    const std::vector<uint8_t> icc(300, 7);
    // LodePNG writes only what could be a profile of gray.
    std::vector<uint8_t> gray = icc;
    memcpy(&gray[16], "GRAY", 4);
    EXPECT_EQ(ColorsIn([&](LodePNGInfo& info) { lodepng_set_icc(&info, "x", gray.data(), 300); }).profile,
              gray);
}

TEST(PngFile, ConvertsColorsBeforeTheyShowTheLabel) {
    const auto invert = [](uint32_t* pixels, size_t count) {
        for (size_t i = 0; i < count; ++i) pixels[i] ^= 0xFFFFFF;
    };
    const auto converted = [&](const PngRecipe& recipe, const std::vector<uint8_t>& samples) {
        PngReader reader(std::make_unique<std::istringstream>(AsText(MakePng(recipe, samples))), "");
        reader.ConvertColors(invert);
        std::vector<uint32_t> pixels(reader.Size().width);
        reader.ReadAll(pixels.data(), 0);
        return pixels;
    };
    EXPECT_THAT(converted({.width = 2}, {0, 255, 1, 255, 255, 255, 255, 128}),
                ElementsAre(0xFF00FEu, 0x7F7F7Fu));
    EXPECT_THAT(converted({.color = LCT_RGB}, {0, 255, 1})[0] & 0xFFFFFF, 0xFF00FEu);
    EXPECT_THAT(converted({.color = LCT_GREY}, {1})[0] & 0xFFFFFF, 0xFEFEFEu);
}

TEST(PngFile, IsReadRowByRow) {
    std::vector<uint8_t> samples;
    for (int i = 0; i < 17 * 13; ++i) samples.push_back(static_cast<uint8_t>(i * 7));
    for (const bool interlaced : {false, true}) {
        const PngRecipe recipe{.width = 17, .height = 13, .color = LCT_GREY, .interlaced = interlaced};
        PngReader reader(std::make_unique<std::istringstream>(AsText(MakePng(recipe, samples))), "");
        std::vector<uint32_t> row(17);
        for (size_t y = 0; y < 13; ++y) {
            reader.ReadRow(row.data());
            for (size_t x = 0; x < 17; ++x) EXPECT_EQ(row[x], samples[y * 17 + x] * 0x010101u);
        }
    }
}

TEST(PngFile, IsNamedInEveryError) {
    const ScratchFolder scratch;
    const auto complaint = [](const std::filesystem::path& path) {
        return ThrownText([&] { LoadPng(path); });
    };
    const std::filesystem::path name = scratch.Path() / PathFromUtf8("K\xC3\xA4se \xE2\x82\xAC.png");
    EXPECT_EQ(complaint(name), Utf8FromPath(name) + " can't be opened: there is no such file or folder");
    WriteBytes(name, "this is text");
    EXPECT_THAT(complaint(name), HasSubstr("K\xC3\xA4se \xE2\x82\xAC.png is a damaged PNG file: "));
    EXPECT_EQ(complaint(scratch.Path()), Utf8FromPath(scratch.Path()) + " is a folder");
    WriteBytes(name, AsText(MakePlainPng(3, 4, 0)));
    EXPECT_EQ(LoadPng(name).height, 4u);
}

TEST(PngFile, KeepsEveryPixelAndTheResolution) {
    const Picture picture = MakePicture(2, 2, 3, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3});
    const RasterImage image = DecodePng(EncodePng(picture, 200));
    ASSERT_EQ(image.width, 2u);
    EXPECT_THAT(PixelsOf(image), ElementsAre(0xFF0000u, 0x00FF00u, 0x0000FFu, 0x010203u));
    ASSERT_TRUE(image.density);
    EXPECT_EQ(image.density->x, 7874);
    EXPECT_EQ(image.density->y, 7874);
}

TEST(PngFile, IsGrayForAGrayPicture) {
    const std::vector<uint8_t> png = EncodePng(MakePicture(2, 1, 1, {0, 200}), 300);
    constexpr size_t kColorType = 25;  // in the file's header
    EXPECT_EQ(png[kColorType], LCT_GREY);
    EXPECT_THAT(PixelsOf(DecodePng(png)), ElementsAre(0x000000u, 0xC8C8C8u));
}

}  // namespace orvex::tools
