#include "tools/common/png_writer.h"

#include <gtest/gtest.h>

#include "tests/kit/scratch_folder.h"
#include "tools/common/number_text.h"
#include "tools/common/png_file.h"

namespace orvex::tools {
namespace {

constexpr uint32_t kWidth = 70;
constexpr uint32_t kHeight = 50;

uint32_t PixelAt(uint32_t x, uint32_t y) {
    return x * 3 << 16 | y * 5 << 8 | (x * y & 0xFF);
}

// Writes the picture of PixelAt.
void WritePicture(const std::filesystem::path& path, bool srgb) {
    PngWriter png(path, {.width = kWidth, .height = kHeight, .pixelsPerInch = 300, .srgb = srgb});
    std::vector<uint8_t> samples(size_t{kWidth} * 3);
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            const uint32_t pixel = PixelAt(x, y);
            StoreColor(&samples[size_t{x} * 3],
                       {static_cast<uint8_t>(pixel >> 16), static_cast<uint8_t>(pixel >> 8),
                        static_cast<uint8_t>(pixel)});
        }
        png.WriteRow(samples);
    }
    png.Complete();
}

TEST(PngWriter, WritesAPictureThatIsReadBack) {
    const ScratchFolder scratch;
    for (const bool srgb : {false, true}) {
        const std::filesystem::path path = scratch.Path() / "picture.png";
        WritePicture(path, srgb);
        const RasterImage image = LoadPng(path);
        ASSERT_EQ(image.width, kWidth);
        ASSERT_EQ(image.height, kHeight);
        for (uint32_t y = 0; y < kHeight; ++y) {
            for (uint32_t x = 0; x < kWidth; ++x) ASSERT_EQ(image.Row(y)[x], PixelAt(x, y)) << x << ' ' << y;
        }
        EXPECT_NEAR(image.density->x * kMetersPerInch, 300, 0.1);
        EXPECT_EQ(OpenPng(path).Colors().srgb, srgb);
    }
}

TEST(PngWriter, LeavesNoFileUnlessItIsComplete) {
    const ScratchFolder scratch;
    {
        PngWriter png(scratch.Path() / "part.png", {.width = 2, .height = 2, .pixelsPerInch = 96});
        png.WriteRow(std::vector<uint8_t>(6));
    }
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Path()));
    EXPECT_THROW(PngWriter(scratch.Path() / "none" / "a.png", {.width = 2, .height = 2, .pixelsPerInch = 96}),
                 std::runtime_error);
}

TEST(PngWriter, RefusesARowOfAnotherLength) {
    const ScratchFolder scratch;
    PngWriter png(scratch.Path() / "row.png", {.width = 2, .height = 2, .pixelsPerInch = 96});
    EXPECT_THROW(png.WriteRow(std::vector<uint8_t>(5)), std::runtime_error);
}

}  // namespace
}  // namespace orvex::tools
