#include "tools/orvexprint/spool_writer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "platform/windows.h"
#include "tools/common/number_text.h"

namespace orvex::tools::print {

namespace {

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kBandRows = 64;
constexpr size_t kMostColors = 256;  // that the pixels of a bitmap can number
constexpr uint32_t kMetafileVersion = 0x10000;

template <typename Record>
std::string_view BytesOf(const Record& record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

size_t RoundedUp(size_t size) {
    return (size + 3) / 4 * 4;
}

// Rows of a page that are not all white, taken together.
struct DrawnBand {
    uint32_t top;
    uint32_t rows;
    std::vector<uint32_t> colors = {};  // of its pixels, in ascending order; empty if there are more than 256

    // Returns the bits of a pixel: as few as number its colors, or those of a color.
    uint32_t PixelBits() const {
        if (colors.empty()) return 24;
        return colors.size() <= 2 ? 1 : colors.size() <= 16 ? 4 : 8;
    }
};

bool IsWhite(const uint32_t* row, uint32_t width) {
    return std::all_of(row, row + width, [](uint32_t pixel) { return (pixel & kWhite) == kWhite; });
}

const uint32_t* RowAt(const DrawnPage& page, uint32_t y) {
    return page.bits.pixels + y * page.bits.stride;
}

std::vector<uint32_t> ColorsOf(const DrawnPage& page, const DrawnBand& band) {
    std::vector<uint32_t> colors;
    uint32_t last = ~0u;
    for (uint32_t y = band.top; y < band.top + band.rows; ++y) {
        for (const uint32_t* pixel = RowAt(page, y); pixel < RowAt(page, y) + page.width; ++pixel) {
            if ((*pixel & kWhite) == last) continue;  // neighbors mostly share a color
            last = *pixel & kWhite;
            const auto place = std::lower_bound(colors.begin(), colors.end(), last);
            if (place != colors.end() && *place == last) continue;
            if (colors.size() == kMostColors) return {};
            colors.insert(place, last);
        }
    }
    return colors;
}

std::vector<DrawnBand> DrawnBands(const DrawnPage& page) {
    std::vector<DrawnBand> bands;
    for (uint32_t y = 0; y < page.height; ++y) {
        if (IsWhite(RowAt(page, y), page.width)) continue;
        const bool goesOn = !bands.empty() && bands.back().top + bands.back().rows == y;
        if (goesOn && bands.back().rows < kBandRows) {
            ++bands.back().rows;
        } else {
            bands.push_back({y, 1});
        }
    }
    for (DrawnBand& band : bands) band.colors = ColorsOf(page, band);
    return bands;
}

// The head of a record that draws a band; its colors and its pixels follow.
struct BandRecord {
    EMRSTRETCHDIBITS draw;
    BITMAPINFOHEADER bitmap;
};
static_assert(sizeof(BandRecord) == sizeof(EMRSTRETCHDIBITS) + sizeof(BITMAPINFOHEADER));

size_t RowBytes(const DrawnBand& band, uint32_t width) {
    return RoundedUp((size_t{width} * band.PixelBits() + 7) / 8);
}

uint64_t RecordBytes(const DrawnBand& band, uint32_t width) {
    return sizeof(BandRecord) + band.colors.size() * sizeof(uint32_t) +
           uint64_t{RowBytes(band, width)} * band.rows;
}

BandRecord HeadOf(const DrawnBand& band, uint32_t width) {
    const auto columns = static_cast<LONG>(width);
    const auto top = static_cast<LONG>(band.top);
    const auto rows = static_cast<LONG>(band.rows);
    const auto count = static_cast<DWORD>(band.colors.size());
    const auto size = static_cast<DWORD>(RowBytes(band, width) * band.rows);
    BandRecord record = {};
    record.draw.emr = {EMR_STRETCHDIBITS, static_cast<DWORD>(RecordBytes(band, width))};
    record.draw.rclBounds = {0, top, columns - 1, top + rows - 1};
    record.draw.yDest = top;
    record.draw.cxSrc = record.draw.cxDest = columns;
    record.draw.cySrc = record.draw.cyDest = rows;
    record.draw.offBmiSrc = sizeof record.draw;
    record.draw.cbBmiSrc = static_cast<DWORD>(sizeof record.bitmap + count * sizeof(RGBQUAD));
    record.draw.offBitsSrc = record.draw.offBmiSrc + record.draw.cbBmiSrc;
    record.draw.cbBitsSrc = size;
    record.draw.iUsageSrc = DIB_RGB_COLORS;
    record.draw.dwRop = SRCCOPY;
    record.bitmap = {.biSize = sizeof record.bitmap,
                     .biWidth = columns,
                     .biHeight = rows,
                     .biPlanes = 1,
                     .biBitCount = static_cast<WORD>(band.PixelBits()),
                     .biCompression = BI_RGB,
                     .biSizeImage = size,
                     .biXPelsPerMeter = 0,
                     .biYPelsPerMeter = 0,
                     .biClrUsed = count,
                     .biClrImportant = 0};
    return record;
}

// Returns a row of 24-bit pixels: blue, green, red.
std::string RowOfColors(const uint32_t* pixels, uint32_t width, std::string row) {
    for (uint32_t x = 0; x < width; ++x) {
        for (size_t i = 0; i < 3; ++i) row[size_t{x} * 3 + i] = static_cast<char>(pixels[x] >> 8 * i);
    }
    return row;
}

// Returns a row of pixels that number the band's colors, the leftmost in a byte's highest bits.
std::string RowOfNumbers(const DrawnBand& band, const uint32_t* pixels, uint32_t width, std::string row) {
    const uint32_t bits = band.PixelBits(), inByte = 8 / bits;
    size_t number = 0;
    for (uint32_t x = 0; x < width; ++x) {
        const uint32_t color = pixels[x] & kWhite;
        if (band.colors[number] != color) {
            const auto found = std::lower_bound(band.colors.begin(), band.colors.end(), color);
            number = static_cast<size_t>(found - band.colors.begin());
        }
        char& byte = row[x / inByte];
        byte = static_cast<char>(byte | number << bits * (inByte - 1 - x % inByte));
    }
    return row;
}

std::string RowOf(const DrawnBand& band, const uint32_t* pixels, uint32_t width) {
    std::string blank(RowBytes(band, width), '\0');
    return band.colors.empty() ? RowOfColors(pixels, width, std::move(blank))
                               : RowOfNumbers(band, pixels, width, std::move(blank));
}

// Returns the header of a metafile that covers the whole page, for a device as large as the page.
ENHMETAHEADER HeaderOf(const DrawnPage& page, const std::vector<DrawnBand>& bands) {
    const auto mm = [&](uint32_t pixels) {
        return static_cast<LONG>(std::max(1.0, std::round(pixels * kMmPerInch / page.dpi)));
    };
    const auto width = static_cast<LONG>(page.width);
    const auto height = static_cast<LONG>(page.height);
    ENHMETAHEADER header = {};
    header.iType = EMR_HEADER;
    header.nSize = sizeof header;
    header.rclBounds = {0, 0, width - 1, height - 1};
    header.szlDevice = {width, height};
    header.szlMillimeters = {mm(page.width), mm(page.height)};
    header.szlMicrometers = {header.szlMillimeters.cx * 1000, header.szlMillimeters.cy * 1000};
    header.rclFrame = {0, 0, header.szlMillimeters.cx * 100, header.szlMillimeters.cy * 100};
    header.dSignature = ENHMETA_SIGNATURE;
    header.nVersion = kMetafileVersion;
    header.nRecords = static_cast<DWORD>(bands.size() + 2);
    header.nHandles = 1;
    uint64_t size = sizeof header + sizeof(EMREOF);
    for (const DrawnBand& band : bands) size += RecordBytes(band, page.width);
    if (size > UINT32_MAX - kSpoolRecordHead)
        throw std::runtime_error("a page is too large for a spool file");
    header.nBytes = static_cast<DWORD>(size);
    return header;
}

struct RecordHead {
    uint32_t id;
    uint32_t size;
};
static_assert(sizeof(RecordHead) == kSpoolRecordHead);

}  // namespace

SpoolWriter::SpoolWriter(const std::filesystem::path& path, const std::string& document,
                         const std::string& port)
    : file_(path) {
    const auto bytesOf = [](const std::u16string& text) {
        const size_t size = (text.size() + 1) * sizeof(char16_t);
        return std::string(reinterpret_cast<const char*>(text.c_str()), size);
    };
    std::string names = bytesOf(Wide(document));
    names.resize(RoundedUp(names.size()));
    const auto portAt = static_cast<uint32_t>(kSpoolHeader + names.size());
    names += bytesOf(Wide(port));
    names.resize(RoundedUp(names.size()));
    const uint32_t header[] = {kSpoolVersion, static_cast<uint32_t>(kSpoolHeader + names.size()),
                               static_cast<uint32_t>(kSpoolHeader), portAt};
    static_assert(sizeof header == kSpoolHeader);
    file_.Write(BytesOf(header));
    file_.Write(names);
}

void SpoolWriter::AddDeviceMode(ByteSpan deviceMode) {
    std::string padded(deviceMode.begin(), deviceMode.end());
    padded.resize(RoundedUp(padded.size()));
    file_.Write(BytesOf(RecordHead{EMRI_DEVMODE, static_cast<uint32_t>(deviceMode.size())}));
    file_.Write(padded);
}

void SpoolWriter::AddPage(const DrawnPage& page) {
    const uint64_t begin = file_.Size();
    const std::vector<DrawnBand> bands = DrawnBands(page);
    const ENHMETAHEADER header = HeaderOf(page, bands);
    file_.Write(BytesOf(RecordHead{EMRI_METAFILE_DATA, header.nBytes}));
    file_.Write(BytesOf(header));
    for (const DrawnBand& band : bands) {
        file_.Write(BytesOf(HeadOf(band, page.width)));
        file_.Write(
            {reinterpret_cast<const char*>(band.colors.data()), band.colors.size() * sizeof(RGBQUAD)});
        for (uint32_t row = band.rows; row-- > 0;) {
            file_.Write(RowOf(band, RowAt(page, band.top + row), page.width));
        }
    }
    const EMREOF end = {{EMR_EOF, sizeof end}, 0, sizeof end - sizeof end.nSizeLast, sizeof end};
    file_.Write(BytesOf(end));
    const uint64_t back = file_.Size() - begin;
    file_.Write(BytesOf(RecordHead{EMRI_METAFILE_EXT, sizeof back}));
    file_.Write(BytesOf(back));
}

void SpoolWriter::Complete() {
    file_.CheckWrites();
    file_.Complete();
}

}  // namespace orvex::tools::print
