// The thumbnail of a page of any size with any limits: a PNG of the page, reduced and opaque, as base64 text.

#include <bit>
#include <cstdlib>
#include <cstring>

#include "driver/thumbnail.h"
#include "fuzz/fuzz_installation.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/kit/heap_watch.h"
#include "tests/plain/plain_colors.h"
#include "tests/plain/plain_reduction.h"
#include "tools/common/png_file.h"
#include "tools/orvexview/base64_decoder.h"

namespace orvex::fuzz {

namespace {

constexpr int64_t kMostPixels = 1 << 16;

// A limit as the settings file states it.
struct Limit {
    std::string text;  // empty: not stated
    double number;
};

Limit LimitOf(FuzzInput& input, double usual) {
    constexpr const char* kTexts[] = {"100",  "99.9", "100.5", "0",    "-1",  "1e300", "nan",
                                      "-inf", "inf",  "2000",  "1e-9", "200", "x",     "2147483648"};
    const uint8_t choice = input.Byte();
    if (choice == 0) return {"", usual};
    std::string text;
    if (choice <= std::size(kTexts)) {
        text = kTexts[choice - 1];
    } else if (choice < 0x80) {
        text = std::to_string(input.Number<uint16_t>());
    } else {
        char digits[40];
        snprintf(digits, sizeof digits, "%.17g", std::bit_cast<double>(input.Number<uint64_t>()));
        text = digits;
    }
    return {text, atof(text.c_str())};
}

std::string LineOf(const char* key, const Limit& limit) {
    return limit.text.empty() ? "" : key + limit.text + "\r\n";
}

// Returns the pixels of a page: the input's bytes over and over, or no two alike without any.
std::vector<uint32_t> PixelsOf(FuzzInput& input, int32_t width, int32_t height) {
    const std::span<const uint8_t> bytes = input.Rest();
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (size_t i = 0; i < pixels.size(); ++i) {
        const uint32_t varied = plain::Scramble(static_cast<uint32_t>(i));
        pixels[i] = bytes.empty() ? varied : bytes[i % bytes.size()] * 0x01030507u;
    }
    return pixels;
}

uint32_t BigEndian(const std::vector<uint8_t>& bytes, size_t at) {
    return static_cast<uint32_t>(bytes[at] << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3]);
}

void CheckPng(const std::vector<uint8_t>& png, const std::vector<uint32_t>& expected, int32_t width,
              int32_t height) {
    constexpr size_t kWidthAt = 16, kHeightAt = 20;
    REQUIRE(png.size() > kHeightAt + 4);
    REQUIRE(BigEndian(png, kWidthAt) == static_cast<uint32_t>(width));
    REQUIRE(BigEndian(png, kHeightAt) == static_cast<uint32_t>(height));
    if (expected.empty()) return;  // no decoder takes a picture without pixels
    const tools::RasterImage picture = tools::DecodePng(png);
    for (size_t i = 0; i < expected.size(); ++i) {
        // The encoder takes the bytes of a pixel as they lie in memory: blue comes first.
        const uint32_t pixel = expected[i];
        REQUIRE(picture.pixels[i] ==
                ((pixel & 0xFF) << 16 | (pixel >> 8 & 0xFF) << 8 | (pixel >> 16 & 0xFF)));
    }
}

}  // namespace

void FuzzThumbnail(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const Limit maxWidth = LimitOf(choices, 800), maxHeight = LimitOf(choices, 600);
    const int32_t width = choices.Number<uint16_t>();
    const auto mostHeight = static_cast<int32_t>(kMostPixels / std::max(width, 1));
    const int32_t height = std::min<int32_t>(choices.Number<uint16_t>(), mostHeight);
    const std::vector<uint32_t> pixels = PixelsOf(choices, width, height);
    FuzzInstallation().WriteSettings("[Driver]\r\n" + LineOf("thumb_max_width=", maxWidth) +
                                     LineOf("thumb_max_height=", maxHeight));

    const HeapWatch heap;
    char* text = nullptr;
    size_t length = 0;
    REQUIRE(BuildPageThumbnail(pixels.data(), width, height, &text, &length) == 1);
    REQUIRE(text != nullptr && strlen(text) == length && length % 4 == 0);
    REQUIRE(heap.LiveBlocks().size() == 1);
    const std::vector<uint8_t> png = tools::view::DecodeBase64(text);
    REQUIRE(length == (png.size() + 2) / 3 * 4);
    free(text);

    const int32_t scale = plain::ThumbnailScale(width, height, maxWidth.number, maxHeight.number);
    CheckPng(png, plain::Reduced(pixels, width, height, scale), width >> scale, height >> scale);
}

Seeds ThumbnailSeeds() {
    // Two limits, each of a list, a number or a double; width, height and pixels.
    const std::string colors = "\x11\x52\x93\xD4\x35\x76\xB7";
    const auto page = [](int width, int height) {
        return std::string{static_cast<char>(width), static_cast<char>(width >> 8), static_cast<char>(height),
                           static_cast<char>(height >> 8)};
    };
    return {
        std::string("\1\1", 2) + page(401, 120) + colors,
        std::string("\0\0", 2) + page(1700, 2),
        std::string("\x20\x2C\1\x03\7", 5) + page(203, 517) + colors,
        std::string("\xFF\0\0\0\0\0\0\x59\x40\xFF\0\0\0\0\0\x20\x59\x40", 18) + page(512, 400),
        std::string("\7\1", 2) + page(130, 300) + colors,
        std::string("\4\x0E", 2) + page(20, 30),
        std::string("\1\1", 2) + page(0, 3),
        std::string("\2\1", 2) + page(150, 120),
        std::string("\3\1", 2) + page(101, 30),
        std::string("\1\2", 2) + page(120, 150) + colors,
    };
}

}  // namespace orvex::fuzz
