#include "tools/host/metafile_player.h"

#include "tools/common/picture.h"

#ifdef _WIN32

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

namespace orvex::tools {

namespace {

constexpr uint32_t kColorBits = 0xFFFFFF;

struct Closer {
    void operator()(HDC context) const { DeleteDC(context); }
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
    void operator()(HENHMETAFILE metafile) const { DeleteEnhMetaFile(metafile); }
};
template <typename Handle>
using Owner = std::unique_ptr<std::remove_pointer_t<Handle>, Closer>;

// A bitmap of 32 bits a pixel, in rows from the top, that GDI draws on.
class DrawnBitmap {
  public:
    DrawnBitmap(uint32_t width, uint32_t height) : context_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = static_cast<LONG>(width);
        info.bmiHeader.biHeight = -static_cast<LONG>(height);
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_.reset(CreateDIBSection(context_.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        if (!context_ || !bitmap_) throw std::bad_alloc();
        pixels_ = static_cast<uint32_t*>(bits);
        before_ = SelectObject(context_.get(), bitmap_.get());
    }
    ~DrawnBitmap() {
        if (before_ != nullptr) SelectObject(context_.get(), before_);
    }
    DrawnBitmap(const DrawnBitmap&) = delete;
    DrawnBitmap& operator=(const DrawnBitmap&) = delete;

    HDC Context() const { return context_.get(); }
    uint32_t* Pixels() const { return pixels_; }

  private:
    Owner<HDC> context_;
    Owner<HBITMAP> bitmap_;
    HGDIOBJ before_ = nullptr;
    uint32_t* pixels_ = nullptr;
};

// A band of the page as the metafile sees it: before it is turned.
struct Band {
    uint32_t top;
    uint32_t rows;
    uint32_t width;
};

// Calls `move(drawn pixel, page pixel)` for each pixel of a band.
template <typename Move>
void ForEachPixel(const PlayedPage& page, const Band& band, uint32_t* drawn, const Move& move) {
    for (uint32_t y = 0; y < band.rows; ++y) {
        uint32_t* const row = drawn + size_t{y} * band.width;
        const size_t line = size_t{band.top} + y;
        uint32_t* target =
            page.turned ? page.pixels + (page.width - 1 - line) : page.pixels + line * page.stride;
        const size_t step = page.turned ? page.stride : 1;
        for (uint32_t x = 0; x < band.width; ++x, target += step) move(row[x], *target);
    }
}

// Makes a record that creates a font ask for hard edges: the device takes no gray text, and the graphics
// engine draws none for it. Returns an empty copy for other records.
std::vector<uint32_t> WithHardEdges(const ENHMETARECORD* record) {
    constexpr size_t kQualityAt = sizeof(EMR) + sizeof(DWORD) + offsetof(LOGFONTW, lfQuality);
    if (record->iType != EMR_EXTCREATEFONTINDIRECTW || record->nSize <= kQualityAt) return {};
    std::vector<uint32_t> copy(record->nSize / sizeof(uint32_t));
    memcpy(copy.data(), record, copy.size() * sizeof(uint32_t));
    reinterpret_cast<uint8_t*>(copy.data())[kQualityAt] = NONANTIALIASED_QUALITY;
    return copy;
}

int CALLBACK PlayRecord(HDC context, HANDLETABLE* handles, const ENHMETARECORD* record, int handleCount,
                        LPARAM refused) {
    const std::vector<uint32_t> font = WithHardEdges(record);
    if (!font.empty()) record = reinterpret_cast<const ENHMETARECORD*>(font.data());
    if (!PlayEnhMetaFileRecord(context, handles, record, static_cast<UINT>(handleCount)))
        ++*reinterpret_cast<size_t*>(refused);
    return TRUE;
}

size_t PlayBand(HENHMETAFILE metafile, RECT frame, const PlayedPage& page, const Band& band,
                const DrawnBitmap& bitmap) {
    ForEachPixel(page, band, bitmap.Pixels(), [](uint32_t& drawn, uint32_t there) { drawn = there; });
    const auto top = static_cast<LONG>(band.top);
    frame.top -= top;
    frame.bottom -= top;
    SetBrushOrgEx(bitmap.Context(), 0, -static_cast<int>(band.top), nullptr);
    size_t refused = 0;
    const BOOL played = EnumEnhMetaFile(bitmap.Context(), metafile, &PlayRecord, &refused, &frame);
    if (!played) throw PageError("can't be drawn: GDI does not play this metafile");
    GdiFlush();
    ForEachPixel(page, band, bitmap.Pixels(),
                 [](uint32_t drawn, uint32_t& there) { there = drawn & kColorBits; });
    return refused;
}

}  // namespace

size_t PlayMetafile(std::span<const uint8_t> metafile, const RECT& frame, const PlayedPage& page,
                    size_t mostBytes) {
    const Owner<HENHMETAFILE> played(SetEnhMetaFileBits(static_cast<UINT>(metafile.size()), metafile.data()));
    if (!played) throw PageError("can't be drawn: GDI does not take this metafile");
    const uint32_t width = page.turned ? page.height : page.width;
    const uint32_t height = page.turned ? page.width : page.height;
    const size_t most = mostBytes / (size_t{width} * sizeof(uint32_t));
    const auto rows = static_cast<uint32_t>(std::clamp<size_t>(most, 1, height));
    size_t refused = 0;
    for (uint32_t top = 0; top < height; top += rows) {
        const Band band = {top, std::min(rows, height - top), width};
        const DrawnBitmap bitmap(width, band.rows);
        refused = std::max(refused, PlayBand(played.get(), frame, page, band, bitmap));
    }
    return refused;
}

LoadedFonts::~LoadedFonts() {
    for (const HANDLE font : fonts_) RemoveFontMemResourceEx(font);
}

bool LoadedFonts::Load(std::span<const uint8_t> file) {
    DWORD count = 0;
    const HANDLE font = AddFontMemResourceEx(const_cast<uint8_t*>(file.data()),
                                             static_cast<DWORD>(file.size()), nullptr, &count);
    if (font == nullptr) return false;
    fonts_.push_back(font);
    return count > 0;
}

}  // namespace orvex::tools

#else

namespace orvex::tools {

size_t PlayMetafile(std::span<const uint8_t>, const RECT&, const PlayedPage&, size_t) {
    throw PageError(
        "can't be drawn: it is a metafile, and metafiles need the Windows build, which has GDI; ./print uses "
        "it");
}

LoadedFonts::~LoadedFonts() = default;

bool LoadedFonts::Load(std::span<const uint8_t>) {
    return false;
}

}  // namespace orvex::tools

#endif
