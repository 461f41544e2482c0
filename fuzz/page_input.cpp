#include "fuzz/page_input.h"

#include <algorithm>
#include <cstring>

#include "driver/color/color_cache.h"

namespace orvex::fuzz {

namespace {

// The plain look-ups' table.
uint32_t plainTable[kCacheEntries];

constexpr uint32_t kWhite = 0xFFFFFF;

// The kinds of table, a whole one first, for inputs too short to select one.
constexpr int32_t kKinds[] = {kEntries, kGrid, kHalfGridPlanes, kGrid, kHalfGridEntries, kPlanes};

uint32_t InkOf(uint32_t color) {
    const uint32_t ink = color * 2654435761u;
    return ink >> 28 == 5 ? 0 : (ink & 0x7FFFFFFF) | 1;
}

uint32_t WholeTableColor(uint32_t value) {
    return value * 0x010307u & kWhite;
}

void Store(uint32_t color, uint32_t ink) {
    g_colorCache[color] = plainTable[color] = ink;
}

// Fills the grid once: no other table changes its points, except white, which each table stores.
void StoreGrid() {
    static const bool stored = [] {
        for (int point = 0; point < kGridPoints; ++point) {
            const uint32_t color =
                ColorIndex(GridValue(point / 289), GridValue(point / 17 % 17), GridValue(point % 17));
            Store(color, InkOf(color));
        }
        return true;
    }();
    (void)stored;
}

// Returns the length of a side: half of them are short, to be drawn fast, and others exceed two bands.
int32_t Side(uint8_t choice) {
    constexpr int32_t kBandColumns = 64;
    const int32_t side = choice < 128 ? 1 + choice % 40 : choice - 115;
    static_assert(255 - 115 > 2 * kBandColumns);
    return side;
}

// Numbers of pixels that a pixel of the input covers along a side, so that rows and blocks repeat.
constexpr int32_t kCovered[] = {1, 2, 3, 8, 9, 16, 17, 40};

}  // namespace

PageColors::PageColors(FuzzInput& input) : kind_(kKinds[input.Byte() % std::size(kKinds)]), around_(kind_) {
    const uint32_t missing = input.Number<uint32_t>();
    StoreGrid();
    if (kind_ == kEntries || kind_ == kPlanes) {
        for (uint32_t value = 0; value < 256; ++value) {
            // A missing entry of a whole table stays missing, since nothing computes it.
            const uint32_t color = WholeTableColor(value);
            Store(color, value % 8 == 7 && missing >> value / 8 & 1 ? kNotComputed : InkOf(color));
        }
        Store(kWhite, InkOf(kWhite));
    } else {
        around_.Fill(missing, InkOf, g_colorCache);
        around_.Fill(missing, InkOf, plainTable);
    }
    SetCacheKind(kind_);
}

uint32_t PageColors::Color(uint8_t value) const {
    const bool whole = kind_ == kEntries || kind_ == kPlanes;
    return whole ? WholeTableColor(value) : around_.Color(value % plain::Neighborhood::kColors);
}

uint32_t PageColors::PlainInk(uint32_t color) const {
    return plain::Lookup(color, kind_, plainTable);
}

bool PageColors::TablesAgree() const {
    for (int value = 0; value < 256; ++value) {
        const uint32_t color = Color(static_cast<uint8_t>(value));
        if (g_colorCache[color] != plainTable[color]) return false;
    }
    return true;
}

PageArt::PageArt(FuzzInput& input, const PageColors& colors) {
    width = Side(input.Byte());
    height = Side(input.Byte());
    pixelBytes = input.Flag() ? 3 : 4;
    const uint8_t choices = input.Byte();
    upward = (choices & 1) != 0;
    const bool alike = (choices & 2) != 0;
    const int32_t across = kCovered[choices >> 2 & 7], down = kCovered[choices >> 5];
    stride = width * pixelBytes + input.Byte() % 8;
    bytes.resize(static_cast<size_t>(stride * (height - 1) + width * pixelBytes));
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const auto place = static_cast<uint32_t>(y * width + x);
            const auto filling = static_cast<uint8_t>(alike ? 0 : place * 2654435761u >> 24);
            const bool covered = x % across != 0 || y % down != 0;
            const uint32_t color = covered         ? Pixel(x - x % across, y - y % down)
                                   : input.Empty() ? colors.Color(filling)
                                                   : colors.Color(input.Byte());
            const uint32_t pixel = color | 0xAB000000;
            memcpy(bytes.data() + Offset(x, y), &pixel, static_cast<size_t>(pixelBytes));
        }
    }
}

size_t PageArt::Offset(int32_t x, int32_t y) const {
    return static_cast<size_t>((upward ? height - 1 - y : y) * stride + x * pixelBytes);
}

uint32_t PageArt::Pixel(int32_t x, int32_t y) const {
    uint32_t pixel = 0;
    memcpy(&pixel, bytes.data() + Offset(x, y), static_cast<size_t>(pixelBytes));
    return pixel & kColorBits;
}

SURFOBJ PageArt::Surface() {
    SURFOBJ surface = {};
    surface.sizlBitmap = {width, height};
    surface.pvBits = bytes.data();
    surface.pvScan0 = bytes.data() + Offset(0, 0);
    surface.lDelta = upward ? -stride : stride;
    surface.iBitmapFormat = pixelBytes == 3 ? BMF_24BPP : BMF_32BPP;
    return surface;
}

}  // namespace orvex::fuzz
