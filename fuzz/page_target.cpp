// Layout and rows of a page: any geometry is laid out without an overflow and as the plain definition has it;
// the engine gets as many rows, of that width, as announced, and each, fill rows and purge bar too, holds
// what the plain definition has there; a row that it refuses is the last one.

#include <algorithm>
#include <cstring>

#include "color/color_cache.h"
#include "color/row_conversion.h"
#include "driver/job_state.h"
#include "fuzz/device_mode_rules.h"
#include "fuzz/input.h"
#include "fuzz/page_model.h"
#include "fuzz/target.h"
#include "render/page_layout_input.h"
#include "render/raster_loop.h"

namespace {

constexpr int32_t kMaxSide = 40;
constexpr uint32_t kColorBits24 = 0xFFFFFF;

// Pixels take 256 colours, each with an ink of its own.
uint32_t ColorOf(uint8_t value) {
    return value * 0x010307u & kColorBits24;
}
uint32_t InkOf(uint32_t color) {
    return (color * 2654435761u & 0x7FFFFFFF) | 1;
}

void FillCache() {
    for (int value = 0; value < 256; ++value) {
        const uint32_t color = ColorOf(static_cast<uint8_t>(value));
        g_colorCache[color] = InkOf(color);
    }
    g_colorCache[kColorBits24] = InkOf(kColorBits24);
    SetCacheKind(kEntries);
}

// The page bitmap, in a block that ends where its last pixel ends.
struct Bitmap {
    explicit Bitmap(FuzzInput& input)
        : width(1 + input.Byte() % kMaxSide),
          height(1 + input.Byte() % kMaxSide),
          pixelBytes(input.Flag() ? 3 : 4),
          upward(input.Flag()),
          stride(width * pixelBytes + input.Byte() % 8),
          bytes(static_cast<size_t>(stride * (height - 1) + width * pixelBytes)) {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                const uint32_t color = ColorOf(input.Byte()) | 0xAB000000;
                memcpy(bytes.data() + Offset(x, y), &color, static_cast<size_t>(pixelBytes));
            }
        }
    }

    size_t Offset(int32_t x, int32_t y) const {
        return static_cast<size_t>((upward ? height - 1 - y : y) * stride + x * pixelBytes);
    }
    uint32_t Pixel(int32_t x, int32_t y) const {
        uint32_t pixel = 0;
        memcpy(&pixel, bytes.data() + Offset(x, y), static_cast<size_t>(pixelBytes));
        return pixel & kColorBits24;
    }
    SURFOBJ Surface() {
        SURFOBJ surface = {};
        surface.sizlBitmap = {width, height};
        surface.pvBits = bytes.data();
        surface.pvScan0 = bytes.data() + Offset(0, 0);
        surface.lDelta = upward ? -stride : stride;
        surface.iBitmapFormat = pixelBytes == 3 ? BMF_24BPP : BMF_32BPP;
        return surface;
    }

    int32_t width, height, pixelBytes;
    bool upward;
    int32_t stride;
    std::vector<uint8_t> bytes;
};

// The colour at place `i` of image row `row`.
uint32_t ExpectedPixel(const Bitmap& page, const DeviceMode& mode, int32_t row, int32_t i) {
    const int32_t w = page.width, h = page.height;
    const bool rotated = mode.priv.rotate180 != 0, mirrored = mode.priv.mirrorImage != 0;
    if (mode.pub.dmOrientation == DMORIENT_LANDSCAPE) {
        return page.Pixel(rotated != mirrored ? w - 1 - i : i, rotated ? h - 1 - row : row);
    }
    if (!rotated) return page.Pixel(mirrored ? row : w - 1 - row, i);
    if (!mirrored) return page.Pixel(row, h - 1 - i);
    // Shifted by a column, which goes on at the next scan line's beginning, or in white.
    if (row > 0) return page.Pixel(w - row, h - 1 - i);
    return i > 0 ? page.Pixel(0, h - i) : kColorBits24;
}

DeviceMode ModeOf(FuzzInput& input) {
    DeviceMode mode = DefaultDeviceMode();
    const uint8_t flags = input.Byte();
    constexpr int16_t kDots[] = {1, 5, 10}, kGaps[] = {5, 10, 15}, kFrequencies[] = {0, 1, 2, 10, 20, 50};
    mode.pub.dmOrientation = flags & 1 ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    mode.pub.dmPrintQuality = mode.pub.dmYResolution = flags & 2 ? 600 : 300;
    mode.priv.rotate180 = flags >> 2 & 1;
    mode.priv.mirrorImage = flags >> 3 & 1;
    mode.priv.kws = flags >> 4 & 1;
    mode.priv.kws_fullwidth = flags >> 5 & 1;
    mode.priv.alignment = static_cast<int16_t>(input.Byte() % 3);
    mode.priv.purgeBar = static_cast<int16_t>(input.Byte() % 3);
    mode.priv.purgeDots = kDots[input.Byte() % 3];
    mode.priv.purgeGap = kGaps[input.Byte() % 3];
    mode.priv.purgeFreq = kFrequencies[input.Byte() % 6];
    mode.priv.phHOffset = static_cast<int16_t>(input.Number<uint16_t>() % 2001 - 1000);
    mode.priv.colorMode = input.Byte() % 3;
    REQUIRE(BrokenRule(mode) == nullptr);
    return mode;
}

void CheckLayout(const PageLayoutInput& input) {
    const PageLayout layout = ComputePageLayout(input);
    const PlainLayout plain = ComputePlainLayout(input);
    REQUIRE(layout.phOffsetPx == plain.phOffsetPx);
    REQUIRE(layout.fullWidth == plain.fullWidth);
    REQUIRE(layout.imageWidth == plain.imageWidth && layout.rowWidth == plain.rowWidth);
    REQUIRE(layout.rows == plain.rows && layout.headRows == plain.headRows);
    REQUIRE(layout.purgeLead == plain.purgeLead && layout.purgeLen == plain.purgeLen);
    REQUIRE(layout.pageWUnits == plain.pageW && layout.pageHUnits == plain.pageH);
    REQUIRE(layout.pageLengthUnits == plain.pageLength);
    REQUIRE(layout.placed.topOff == plain.topOff);
    REQUIRE(layout.placed.fullTop == plain.fullTop && layout.placed.fullBottom == plain.fullBottom);
}

// Takes the rows of a page and holds each against its plain definition; refuses one of them, or none.
struct RowCheck {
    const Bitmap& page;
    const DeviceMode& mode;
    const PageLayout& layout;
    int64_t refused;  // the number of the row to refuse
    std::vector<uint32_t> expected = std::vector<uint32_t>(static_cast<size_t>(layout.rowWidth));
    int64_t rows = 0;

    void Begin() {
        const PrivateDevMode& priv = mode.priv;
        const bool purges =
            priv.purgeFreq != 0 ? (g_nPage - 1) % static_cast<uint32_t>(priv.purgeFreq) == 0 : g_nPage == 1;
        if (priv.purgeBar == 0 || !purges) return;
        const int32_t first = layout.purgeLead != 0 ? 0 : layout.rowWidth - layout.purgeDots - 1;
        for (int32_t i = 0; i < layout.purgeDots; ++i) {
            expected[static_cast<size_t>(first + i)] = layout.dpi == 600 ? 0x7F7F7F7F : 0xFFFFFFFF;
        }
    }
    uint32_t* ImageArea() { return expected.data() + (layout.purgeLead != 0 ? layout.purgeLen : 0); }
    // In front of the image, without a pattern, the row stays as it is.
    void ExpectFill(bool inFront) {
        for (int32_t i = 0; i < layout.imageWidth; ++i) {
            const uint32_t amount = layout.dpi == 600 ? 2 : 4;
            if (mode.priv.kws != 0)
                ImageArea()[i] = amount << 8 * (i % 4);
            else if (!inFront)
                ImageArea()[i] = 0;
        }
    }
    // What a pixel becomes is the row conversion's; it has its own tests.
    void ExpectImage(int32_t row) {
        const auto count = static_cast<size_t>(layout.imageWidth);
        std::vector<uint32_t> pixels(count);
        for (size_t i = 0; i < count; ++i)
            pixels[i] = ExpectedPixel(page, mode, row, static_cast<int32_t>(i));
        if (mode.priv.kws == 0 && mode.priv.colorMode == 0) {
            std::transform(pixels.begin(), pixels.end(), ImageArea(), InkOf);
        } else {
            ConvertRow(ImageArea(), pixels.data(), static_cast<uint32_t>(count), 1, mode.priv.kws,
                       layout.dpi == 600, static_cast<uint32_t>(mode.priv.colorMode));
        }
        if (row == 0 && expected[0] == 0) expected[0] = 2;
    }
    bool Take(const uint32_t* row) {
        const int64_t imageRow = rows - layout.placed.fullTop;
        if (imageRow < 0 || imageRow >= layout.rows) {
            ExpectFill(imageRow < 0);
        } else {
            ExpectImage(static_cast<int32_t>(imageRow));
        }
        REQUIRE(memcmp(row, expected.data(), expected.size() * sizeof *row) == 0);
        return rows++ != refused;
    }
};

RowCheck* currentCheck = nullptr;

uint32_t HPCRLIB_CALL TakeRow(uint64_t, const uint32_t* row) {
    return currentCheck->Take(row) ? 1 : 0;
}

void CheckRows(FuzzInput& input, const DeviceMode& mode, int64_t refused) {
    Bitmap page(input);
    const PageLayout layout =
        ComputePageLayout(LayoutInput(mode, mode.pub.dmPrintQuality, page.width, page.height));
    FillCache();
    PDEV pdev = {};
    pdev.devmode = mode;
    RowCheck check{page, mode, layout, refused};
    check.Begin();
    currentCheck = &check;
    g_engine.HPCRLIB_RasterRow = &TakeRow;
    const bool sent = SendRasterRows(pdev, page.Surface(), layout);
    g_engine = {};
    currentCheck = nullptr;
    const auto count = [](int32_t rows) { return int64_t{std::max(rows, 0)}; };
    const int64_t all = count(layout.placed.fullTop) + layout.rows + count(layout.placed.fullBottom);
    REQUIRE(sent == (refused < 0 || refused >= all));
    REQUIRE(check.rows == (sent ? all : refused + 1));
}

}  // namespace

void FuzzPage(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    g_nPage = 1 + choices.Byte() % 100;
    const DeviceMode mode = ModeOf(choices);
    PageLayoutInput any =
        LayoutInput(mode, mode.pub.dmPrintQuality, choices.Number<int32_t>(), choices.Number<int32_t>());
    CheckLayout(any);
    any.phHOffset = choices.Number<int16_t>();
    any.alignment = choices.Number<int16_t>();
    CheckLayout(any);
    const bool refuses = choices.Flag();
    const auto refused = choices.Number<uint16_t>();
    CheckRows(choices, mode, refuses ? refused : int64_t{-1});
}

Seeds PageSeeds() {
    // Page number, flags, alignment, purge bar, dots, gap, frequency, offset, colour mode, two lengths,
    // offset and alignment of the second layout; whether a row is refused, and its number; then width,
    // height, format, direction, padding and pixels of the bitmap.
    Seeds seeds;
    for (char flags = 0; flags < 64; flags = static_cast<char>(flags + 7)) {
        std::string seed{0, flags, static_cast<char>(flags % 3), static_cast<char>(flags % 4), 1, 0, 1};
        seed += std::string("\xE8\x03\0\x10\x27\0\0\xFF\xFF\xFF\x7F\x18\xFC\1\0", 15);
        seed += {flags == 14 ? '\1' : '\0', flags, '\0'};
        seed += std::string{16, static_cast<char>(17 + flags % 3), flags, static_cast<char>(flags / 2), 3};
        for (int i = 0; i < 300; ++i) seed += static_cast<char>(i * 5);
        seeds.push_back(seed);
    }
    return seeds;
}
