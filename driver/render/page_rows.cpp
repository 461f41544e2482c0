#include "driver/render/page_rows.h"

#include <simde/x86/sse2.h>

#include <algorithm>
#include <cstring>

namespace orvex {

namespace {

constexpr int32_t kBandColumns = 64;  // the pixels of a scan line in four cache lines
constexpr int32_t kTileLines = 16;    // the scan lines that fill one cache line of each row of the band
constexpr int32_t kLinesAhead = 32;   // scan lines between the one that is fetched and the one that is read
constexpr int32_t kCacheLine = 64;
constexpr uint32_t kPaperWhite = 0x00FFFFFF;

uint32_t LoadPixel(const uint8_t* pixel, int32_t bytesPerPixel) {
    if (bytesPerPixel == 3) return pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16;
    uint32_t value;
    memcpy(&value, pixel, sizeof value);
    return value;
}

__m128i LoadFour(const uint8_t* pixels) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}
void StoreFour(uint32_t* destination, __m128i pixels) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), pixels);
}

// Transposes four scan lines of four pixels into four rows of the band.
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

// Copies `count` 32-bit pixels in reverse order.
void CopyReversed(uint32_t* destination, const uint8_t* source, int32_t count) {
    const uint8_t* end = source + ptrdiff_t{count} * 4;
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) {
        end -= 16;
        StoreFour(destination + i, _mm_shuffle_epi32(LoadFour(end), _MM_SHUFFLE(0, 1, 2, 3)));
    }
    for (; i < count; ++i) {
        end -= 4;
        destination[i] = LoadPixel(end, 4);
    }
}

// Returns whether a landscape page's scan lines are read from right to left.
bool IsReversed(RowOrder order) {
    return order.rotate180 != order.mirrorImage;
}

// Returns whether the scan lines of a page can be handed out as they lie in the bitmap.
bool LiesInPlace(const PageBitmap& bitmap, RowOrder order) {
    return order.landscape && !IsReversed(order) && bitmap.bytesPerPixel == 4 && bitmap.stride % 4 == 0 &&
           reinterpret_cast<uintptr_t>(bitmap.firstLine) % 4 == 0;
}

// Copies `count` pixels as 32-bit ones.
void CopyPixels(uint32_t* destination, const uint8_t* source, int32_t count, int32_t bytesPerPixel,
                bool reversed) {
    if (bytesPerPixel == 4 && reversed) {
        CopyReversed(destination, source, count);
        return;
    }
    for (int32_t i = 0; i < count; ++i) {
        const int32_t x = reversed ? count - 1 - i : i;
        destination[i] = LoadPixel(source + x * ptrdiff_t{bytesPerPixel}, bytesPerPixel);
    }
}

bool SameBytes(const void* a, const void* b, size_t size) {
    const auto* left = static_cast<const uint8_t*>(a);
    const auto* right = static_cast<const uint8_t*>(b);
    for (; size >= kCacheLine; left += kCacheLine, right += kCacheLine, size -= kCacheLine) {
        __m128i same = _mm_cmpeq_epi8(LoadFour(left), LoadFour(right));
        for (int32_t i = 16; i < kCacheLine; i += 16) {
            same = _mm_and_si128(same, _mm_cmpeq_epi8(LoadFour(left + i), LoadFour(right + i)));
        }
        if (_mm_movemask_epi8(same) != 0xFFFF) return false;
    }
    return memcmp(left, right, size) == 0;
}

// Fetches a band's part of a scan line into the cache, and the part `companion` bytes after it unless that is
// 0. A part may reach into one more cache line. Fetching is harmless where no memory is.
void Prefetch(const uint8_t* part, ptrdiff_t companion) {
    for (int32_t i = 0; i <= kBandColumns * 4; i += kCacheLine) {
        _mm_prefetch(reinterpret_cast<const char*>(part + i), _MM_HINT_T0);
    }
    if (companion == 0) return;
    for (int32_t i = 0; i < kBandColumns * 4; i += kCacheLine) {
        _mm_prefetch(reinterpret_cast<const char*>(part + companion + i), _MM_HINT_T1);
    }
}

// Transposes a tile of kTileLines scan lines, `step` bytes apart, and `columns` columns, a multiple of four,
// into one cache line of each row of the band. Meanwhile the tile at `next` is fetched with its companion,
// one scan line with each group of columns: fetches of all at once would wait for each other.
void TransposeTile(const uint8_t* tile, const uint8_t* next, ptrdiff_t companion, ptrdiff_t step,
                   int32_t columns, uint32_t* band, ptrdiff_t pitch) {
    static_assert(kBandColumns == 4 * kTileLines, "a group of four columns for each scan line to fetch");
    for (int32_t x = 0; x < columns; x += 4) {
        Prefetch(next, companion);
        next += step;
        for (int32_t line = 0; line < kTileLines; line += 4) {
            const uint8_t* pixels = tile + line * step + ptrdiff_t{x} * 4;
            TransposeFour({pixels, pixels + step, pixels + 2 * step, pixels + 3 * step},
                          band + x * pitch + line, pitch);
        }
    }
}

}  // namespace

RowReader::RowReader(const PageBitmap& bitmap, RowOrder order)
    : bitmap_(bitmap), order_(order), inPlace_(LiesInPlace(bitmap, order)) {
    if (!NeedsBand()) return;
    // Rows of the band are an odd number of cache lines apart, so no two of them share a place in a memory
    // page: the processor's cache has room for only a few lines of the same place.
    bandPitch_ = ((ptrdiff_t{RowWidth()} + 15) / 16 | 1) * 16;
    const size_t rows = order.landscape ? 1 : kBandColumns;
    band_ = AllocateArray<uint32_t>(rows * static_cast<size_t>(bandPitch_));
}

const uint32_t* RowReader::Row(int32_t row) {
    return order_.landscape ? LandscapeRow(row) : PortraitRow(row);
}

void RowReader::CompareWithLast(const void* pixels, size_t bytes) {
    repeats_ = last_ != nullptr && SameBytes(last_, pixels, bytes);
    last_ = pixels;
}

const uint32_t* RowReader::LandscapeRow(int32_t row) {
    const uint8_t* line = Line(order_.rotate180 ? bitmap_.height - 1 - row : row);
    CompareWithLast(line, static_cast<size_t>(bitmap_.width) * static_cast<size_t>(bitmap_.bytesPerPixel));
    if (inPlace_) return reinterpret_cast<const uint32_t*>(line);
    // The band still has a line that repeats.
    if (!repeats_) CopyPixels(band_.get(), line, bitmap_.width, bitmap_.bytesPerPixel, IsReversed(order_));
    return band_.get();
}

// Returns the column that a row of a portrait page reads, which can be the one after the last; see Row().
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
    const uint32_t* pixels = band_.get() + (column - first) * bandPitch_;
    CompareWithLast(pixels, static_cast<size_t>(RowWidth()) * sizeof *pixels);
    return pixels;
}

// Fills the band with the columns from `firstColumn` on, from the top scan line down or, rotated, from the
// bottom up. Whole tiles are transposed, four by four pixels in registers; the rest is copied pixel by pixel.
void RowReader::ReadBand(int32_t firstColumn) {
    const int32_t columns = std::min(kBandColumns, bitmap_.width - firstColumn);
    const int32_t height = bitmap_.height;
    const ptrdiff_t step = order_.rotate180 ? -bitmap_.stride : bitmap_.stride;
    const uint8_t* first =
        Line(order_.rotate180 ? height - 1 : 0) + ptrdiff_t{firstColumn} * bitmap_.bytesPerPixel;
    // Bands form pairs: both parts of a scan line lie on one memory page, whose address is translated only
    // once when the first band of a pair fetches the parts of the other, too.
    const int32_t other = firstColumn ^ kBandColumns;
    const bool fetchOther = other != bandFirst_ && other < bitmap_.width;
    const ptrdiff_t companion = fetchOther ? ptrdiff_t{other - firstColumn} * bitmap_.bytesPerPixel : 0;
    bandFirst_ = firstColumn;
    last_ = nullptr;

    const bool transposable = bitmap_.bytesPerPixel == 4;
    const int32_t tiledLines = transposable ? height - height % kTileLines : 0;
    const int32_t tiledColumns = transposable ? columns - columns % 4 : 0;
    for (int32_t y = 0; y < tiledLines; y += kTileLines) {
        const int32_t next = std::min(y + kLinesAhead, height - kTileLines);
        TransposeTile(first + y * step, first + next * step, companion, step, tiledColumns, band_.get() + y,
                      bandPitch_);
    }
    ReadColumns(first, step, {tiledColumns, columns}, {0, tiledLines});
    ReadColumns(first, step, {0, columns}, {tiledLines, height});
}

// Fills a part of the band pixel by pixel. Columns and scan lines count from the first ones of the band.
void RowReader::ReadColumns(const uint8_t* first, ptrdiff_t step, Range columns, Range lines) {
    for (int32_t y = lines.begin; y < lines.end; ++y) {
        for (int32_t x = columns.begin; x < columns.end; ++x) {
            band_[static_cast<size_t>(x * bandPitch_ + y)] =
                LoadPixel(first + y * step + ptrdiff_t{x} * bitmap_.bytesPerPixel, bitmap_.bytesPerPixel);
        }
    }
}

// Fills the band's first row with the column after the last one, from the bottom up.
void RowReader::ReadOverhang() {
    bandFirst_ = kNoBand;  // the next row begins a band, and so repeats none
    repeats_ = false;
    for (int32_t i = 0; i < bitmap_.height; ++i) {
        const int32_t next = bitmap_.height - i;  // the scan line below
        band_[static_cast<size_t>(i)] =
            next < bitmap_.height ? LoadPixel(Line(next), bitmap_.bytesPerPixel) : kPaperWhite;
    }
}

}  // namespace orvex
