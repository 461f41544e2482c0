#include "tools/orvexprint/spool_writer.h"

#include <gmock/gmock.h>

#include "tests/kit/scratch_folder.h"
#include "tools/orvexprint/metafile.h"

namespace orvex::tools::print {

using testing::ElementsAre;

namespace {

constexpr uint32_t kWidth = 37;
constexpr uint32_t kBand = 64;  // rows that are written together
constexpr uint32_t kBands = 5;
constexpr uint32_t kStride = kWidth + 3;

// A page of bands with 2, 16, 17, 256 and more colors, none of them white alone.
std::vector<uint32_t> MakePage() {
    constexpr uint32_t kColors[kBands] = {2, 16, 17, 256, 2000};
    std::vector<uint32_t> pixels(size_t{kStride} * kBand * kBands, 0xABCDEF);
    for (uint32_t y = 0; y < kBand * kBands; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x)
            pixels[y * kStride + x] = (y * kWidth + x) * 7 % kColors[y / kBand] * 0x000203;
    }
    return pixels;
}

std::string WritePage(const std::vector<uint32_t>& pixels, uint32_t height) {
    const ScratchFolder folder;
    SpoolWriter writer(folder.Path() / "job.spl", "Name", "Port");
    std::vector<uint32_t> bits = pixels;
    writer.AddPage({{bits.data(), kStride}, kWidth, height, 300});
    writer.Complete();
    return ReadBytes(folder.Path() / "job.spl");
}

// The bitmaps of a page, drawn by the format's description.
struct Drawn {
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{kStride} * kBand * kBands, 0xFFFFFF);
    std::vector<uint32_t> pixelBits;  // of each bitmap
};

void DrawBitmap(ByteSpan record, Drawn& drawn) {
    const uint32_t top = Number32(record, 28), width = Number32(record, 40), rows = Number32(record, 44);
    const ByteSpan info = record.subspan(Number32(record, 48)), bitmap = record.subspan(Number32(record, 56));
    const uint32_t pixelBits = Number16(info, 14), rowBytes = (width * pixelBits + 31) / 32 * 4;
    EXPECT_EQ(Number32(record, 60), rowBytes * rows);
    drawn.pixelBits.push_back(pixelBits);
    for (uint32_t y = 0; y < rows; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const size_t bit = size_t{x} * pixelBits, at = (rows - 1 - y) * rowBytes + bit / 8;
            uint32_t& pixel = drawn.pixels[(top + y) * kStride + x];
            if (pixelBits == 24) {
                pixel = bitmap[at] | bitmap[at + 1] << 8 | bitmap[at + 2] << 16;
                continue;
            }
            const uint32_t number = bitmap[at] >> (8 - bit % 8 - pixelBits) & ((1 << pixelBits) - 1);
            ASSERT_LT(number, Number32(info, 32)) << "of the colors";
            pixel = Number32(info, 40 + number * 4);
        }
    }
}

Drawn DrawFile(const std::string& file) {
    const ByteSpan bytes(reinterpret_cast<const uint8_t*>(file.data()), file.size());
    const SpoolFile spool = ReadSpoolFile(bytes);
    EXPECT_EQ(spool.pages.size(), 1u);
    const ByteSpan metafile = ReadMetafile(spool.pages[0].metafile).bytes;
    Drawn drawn;
    for (size_t at = 0; at < metafile.size(); at += Number32(metafile, at + 4)) {
        constexpr uint32_t kStretchDiBits = 81;
        if (Number32(metafile, at) == kStretchDiBits) DrawBitmap(metafile.subspan(at), drawn);
    }
    return drawn;
}

}  // namespace

TEST(SpoolWriter, TakesAsFewBitsAPixelAsTheColorsNeed) {
    const std::vector<uint32_t> page = MakePage();
    const Drawn drawn = DrawFile(WritePage(page, kBand * kBands));
    EXPECT_THAT(drawn.pixelBits, ElementsAre(1, 4, 8, 8, 24));
    for (uint32_t y = 0; y < kBand * kBands; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x)
            ASSERT_EQ(drawn.pixels[y * kStride + x], page[y * kStride + x]) << x << " " << y;
    }
}

TEST(SpoolWriter, LeavesOutWhiteRows) {
    std::vector<uint32_t> page(size_t{kStride} * kBand * kBands, 0xFFFFFFFF);
    EXPECT_THAT(DrawFile(WritePage(page, kBand * kBands)).pixelBits, ElementsAre());
    page[size_t{kStride} * 100 + 5] = 0xFF000000;
    page[size_t{kStride} * 102 + 6] = 0xFF000000;
    const Drawn drawn = DrawFile(WritePage(page, kBand * kBands));
    EXPECT_THAT(drawn.pixelBits, ElementsAre(1, 1)) << "a bitmap of one row each";
    EXPECT_EQ(drawn.pixels[kStride * 100 + 5], 0u);
    EXPECT_EQ(drawn.pixels[kStride * 102 + 6], 0u);
    EXPECT_EQ(std::count(drawn.pixels.begin(), drawn.pixels.end(), 0u), 2);
}

}  // namespace orvex::tools::print
