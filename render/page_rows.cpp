#include "render/page_rows.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int32_t kBandColumns = 16;  // one cache line of a scan line
constexpr uint32_t kPaperWhite = 0x00FFFFFF;

uint32_t LoadPixel(const uint8_t* pixel, int32_t bytesPerPixel) {
    uint32_t value = 0;
    memcpy(&value, pixel, static_cast<size_t>(bytesPerPixel));
    return value;
}

// Copies `count` pixels, from the first on or from the last back.
void CopyPixels(uint32_t* destination, const uint8_t* source, int32_t count, int32_t bytesPerPixel,
                bool reversed) {
    if (bytesPerPixel == 4 && !reversed) {
        memcpy(destination, source, static_cast<size_t>(count) * 4);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        const int32_t x = reversed ? count - 1 - i : i;
        destination[i] = LoadPixel(source + x * ptrdiff_t{bytesPerPixel}, bytesPerPixel);
    }
}

__m128i LoadFour(const uint8_t* pixels) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}
void StoreFour(uint32_t* destination, __m128i pixels) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), pixels);
}

// Turns four scan lines of four pixels into four columns, each at its place in a row of the band.
void TransposeFour(const uint8_t* const (&lines)[4], uint32_t* band, ptrdiff_t rowWidth) {
    const __m128i a = LoadFour(lines[0]);
    const __m128i b = LoadFour(lines[1]);
    const __m128i c = LoadFour(lines[2]);
    const __m128i d = LoadFour(lines[3]);
    const __m128i abLow = _mm_unpacklo_epi32(a, b);
    const __m128i abHigh = _mm_unpackhi_epi32(a, b);
    const __m128i cdLow = _mm_unpacklo_epi32(c, d);
    const __m128i cdHigh = _mm_unpackhi_epi32(c, d);
    StoreFour(band, _mm_unpacklo_epi64(abLow, cdLow));
    StoreFour(band + rowWidth, _mm_unpackhi_epi64(abLow, cdLow));
    StoreFour(band + 2 * rowWidth, _mm_unpacklo_epi64(abHigh, cdHigh));
    StoreFour(band + 3 * rowWidth, _mm_unpackhi_epi64(abHigh, cdHigh));
}

}  // namespace

RowReader::RowReader(const PageBitmap& bitmap, RowOrder order) : bitmap_(bitmap), order_(order) {
    if (!NeedsBand()) return;
    const size_t rows = order.landscape ? 1 : kBandColumns;
    band_ = AllocateArray<uint32_t>(rows * static_cast<size_t>(RowWidth()));
}

const uint32_t* RowReader::Row(int32_t row) {
    return order_.landscape ? LandscapeRow(row) : PortraitRow(row);
}

const uint32_t* RowReader::LandscapeRow(int32_t row) {
    const uint8_t* line = Line(order_.rotate180 ? bitmap_.height - 1 - row : row);
    const bool reversed = order_.rotate180 != order_.mirrorImage;
    const bool inPlace =
        !reversed && bitmap_.bytesPerPixel == 4 && reinterpret_cast<uintptr_t>(line) % 4 == 0;
    if (inPlace) return reinterpret_cast<const uint32_t*>(line);
    CopyPixels(band_.get(), line, bitmap_.width, bitmap_.bytesPerPixel, reversed);
    return band_.get();
}

// The bitmap column that a row of a portrait page reads. The one behind the last is deliberate; see Row().
int32_t RowReader::Column(int32_t row) const {
    if (!order_.rotate180) return order_.mirrorImage ? row : bitmap_.width - 1 - row;
    return order_.mirrorImage ? bitmap_.width - row : row;
}

const uint32_t* RowReader::PortraitRow(int32_t row) {
    const int32_t column = Column(row);
    if (column == bitmap_.width) {
        ReadOverhang();
        return band_.get();
    }
    const int32_t first = column - column % kBandColumns;
    if (first != bandFirst_) ReadBand(first);
    return band_.get() + (column - first) * ptrdiff_t{RowWidth()};
}

// Fills the band with the columns from `firstColumn` on, from the top scan line down or, rotated, from the
// bottom up.
void RowReader::ReadBand(int32_t firstColumn) {
    const int32_t columns = std::min(kBandColumns, bitmap_.width - firstColumn);
    const ptrdiff_t rowWidth = bitmap_.height;
    const uint8_t* line =
        Line(order_.rotate180 ? bitmap_.height - 1 : 0) + firstColumn * bitmap_.bytesPerPixel;
    const ptrdiff_t step = order_.rotate180 ? -bitmap_.stride : bitmap_.stride;
    bandFirst_ = firstColumn;

    int32_t y = 0;
    if (columns == kBandColumns && bitmap_.bytesPerPixel == 4) {
        for (; y + 4 <= bitmap_.height; y += 4) {
            for (int32_t x = 0; x < kBandColumns; x += 4) {
                const uint8_t* pixels = line + y * step + x * 4;
                TransposeFour({pixels, pixels + step, pixels + 2 * step, pixels + 3 * step},
                              band_.get() + x * rowWidth + y, rowWidth);
            }
        }
    }
    for (; y < bitmap_.height; ++y) {
        for (int32_t x = 0; x < columns; ++x) {
            band_[static_cast<size_t>(x * rowWidth + y)] =
                LoadPixel(line + y * step + x * bitmap_.bytesPerPixel, bitmap_.bytesPerPixel);
        }
    }
}

// Fills the band's first row with the column behind the last one, from the bottom up.
void RowReader::ReadOverhang() {
    bandFirst_ = -1;
    for (int32_t i = 0; i < bitmap_.height; ++i) {
        const int32_t next = bitmap_.height - i;  // the scan line below
        band_[static_cast<size_t>(i)] =
            next < bitmap_.height ? LoadPixel(Line(next), bitmap_.bytesPerPixel) : kPaperWhite;
    }
}
