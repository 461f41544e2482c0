// The encoder's files are those of LodePNG with the C library's heap, and fit into the workspace, whatever
// the picture.
#include "driver/render/png_encoder/png_encoder.h"

#include <gtest/gtest.h>
#include <lodepng.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "driver/support/heap.h"

namespace orvex {

namespace {

using Pixels = std::vector<uint32_t>;

constexpr uint32_t kOpaque = 0xFF000000;

// Returns width x height pixels made by `next`.
Pixels Made(unsigned width, unsigned height, const std::function<uint32_t()>& next) {
    Pixels pixels(size_t{width} * height);
    std::generate(pixels.begin(), pixels.end(), next);
    return pixels;
}

std::vector<uint8_t> Expected(const Pixels& pixels, unsigned width, unsigned height) {
    uint8_t* bytes = nullptr;
    size_t size = 0;
    EXPECT_EQ(lodepng_encode32(&bytes, &size, reinterpret_cast<const uint8_t*>(pixels.data()), width, height),
              0u);
    const HeapArray<uint8_t> owner(bytes);
    return {bytes, bytes + size};
}

EncodedPng Encode(std::span<uint8_t> workspace, const Pixels& pixels, unsigned width, unsigned height) {
    return EncodeRgbaPng(workspace, reinterpret_cast<const uint8_t*>(pixels.data()), width, height);
}

void ExpectSameFile(const Pixels& pixels, unsigned width, unsigned height) {
    SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
    std::vector<uint8_t> workspace(PngWorkspaceSize(width, height));
    const EncodedPng png = Encode(workspace, pixels, width, height);
    EXPECT_EQ(png.error, 0u);
    EXPECT_TRUE(std::vector(png.bytes.begin(), png.bytes.end()) == Expected(pixels, width, height));
}

// Sizes at which a part of the workspace is large in comparison with the others.
struct Size {
    unsigned width, height;
};
constexpr Size kSizes[] = {{1, 1}, {7, 5}, {800, 600}, {200000, 1}, {1, 30000}};

}  // namespace

TEST(PngEncoder, MakesTheSameFileOfNoiseWithinItsWorkspace) {
    std::mt19937 random(1);
    for (const auto [width, height] : kSizes) {
        ExpectSameFile(Made(width, height, [&] { return kOpaque | random(); }), width, height);
    }
    ExpectSameFile(Made(300, 200, [&] { return random(); }), 300, 200);
}

TEST(PngEncoder, MakesTheSameFileOfEachNumberOfColorsWithinItsWorkspace) {
    std::mt19937 random(2);
    for (const uint32_t colors : {1, 2, 4, 5, 16, 17, 255, 256, 257}) {
        for (const auto [width, height] : {Size{13, 40}, Size{160, 150}}) {
            ExpectSameFile(Made(width, height, [&] { return kOpaque | random() % colors * 0x9E3779u; }),
                           width, height);
            ExpectSameFile(Made(width, height, [&] { return kOpaque | random() % colors * 0x10101u; }), width,
                           height);
        }
    }
}

// Nothing takes more memory before the codes are made than matches of three bytes: four numbers each.
TEST(PngEncoder, MakesTheSameFileOfShortMatchesWithinItsWorkspace) {
    std::mt19937 random(3);
    std::vector<uint32_t> triples(3 * 600);
    for (uint32_t& pixel : triples) pixel = kOpaque | random() % 250 * 0x10307u;
    size_t position = 0;
    const auto next = [&] {
        if (position % 3 == 0) position = random() % 600 * 3;
        return triples[position++];
    };
    ExpectSameFile(Made(700, 400, next), 700, 400);
}

// Frequencies that grow like this make the longest codes, and with them the largest tables.
TEST(PngEncoder, MakesTheSameFileOfCodesOfAllLengthsWithinItsWorkspace) {
    std::mt19937 random(4);
    const auto next = [&] {
        uint32_t value = 0;
        while (value < 255 && random() % 8 >= 3) ++value;
        return kOpaque | value * 0x30507u;
    };
    ExpectSameFile(Made(300, 200, next), 300, 200);
}

TEST(PngEncoder, MakesTheSameFileOfAPictureWithoutPixels) {
    for (const auto [width, height] : {Size{425, 0}, Size{0, 3}, Size{0, 0}})
        ExpectSameFile({}, width, height);
}

TEST(PngEncoder, TakesTheseWorkspaces) {
    EXPECT_EQ(PngWorkspaceSize(0, 0), 3 * 1024u + (3u << 20));
    EXPECT_EQ(PngWorkspaceSize(800, 600), 1920600 + 3 * (1920600 + 274371 + 1024) + 20 * 800 + (3u << 20));
    // A width times height that exceeds 32 bits.
    EXPECT_EQ(PngWorkspaceSize(70000, 70000),
              19600070000 + 3 * (19600070000 + 2800010000 + 1024) + 1400000 + (3u << 20));
}

TEST(PngEncoder, ReportsThatItIsOutOfMemoryWithoutAWorkspace) {
    EXPECT_EQ(Encode({}, {kOpaque}, 1, 1).error, kPngOutOfMemory);
    EXPECT_EQ(Encode({}, {}, 425, 0).error, kPngOutOfMemory);
    EXPECT_TRUE(Encode({}, {kOpaque}, 1, 1).bytes.empty());
}

TEST(PngEncoder, RefusesAPictureWhoseSizeLodePngCannotCalculateWith) {
    EXPECT_EQ(Encode({}, {}, 1, 0x33333334).error, 92u);  // 5 bytes each: 4 more than fit
    EXPECT_EQ(Encode({}, {}, 0x40000000, 1).error, 92u);  // a byte more than fits
    EXPECT_EQ(Encode({}, {}, 0x7FFFFFFF, 0x7FFFFFFF).error, 92u);
    EXPECT_TRUE(Encode({}, {}, 1, 0x33333334).bytes.empty());
}

}  // namespace orvex
