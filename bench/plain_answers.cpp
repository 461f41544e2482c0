#include "bench/plain_answers.h"

#include <algorithm>
#include <string>

#include "bench/contest.h"
#include "tests/plain/plain_colors.h"

namespace orvex::bench {

namespace {

constexpr uint32_t kFirstPixelMarker = 2;

uint32_t GrayWeight(uint32_t ink) {
    const uint32_t k = plain::InkByte(ink, 0);
    const double sum = (plain::InkByte(ink, 2) + k) * 0.587 + (plain::InkByte(ink, 1) + k) * 0.299 +
                       (plain::InkByte(ink, 3) + k) * 0.114;
    return std::min(static_cast<uint32_t>(sum), 255u);
}

}  // namespace

std::vector<uint32_t> PlainInks(const std::filesystem::path& profile, ResolutionSelector resolution) {
    signed char code;
    char name[512];
    if (zvc_load_profile(profile.string().c_str(), resolution, &code, name, sizeof name) != kGrid) {
        throw CheckFailure(profile.string() + " is no profile of version 5");
    }
    const plain::Grid grid(g_colorCache);
    std::vector<uint32_t> inks(kCacheEntries);
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        inks[color] =
            plain::IsGridPoint(color)
                ? g_colorCache[color]
                : plain::Prism(
                      color, plain::PrismWeights(plain::Blue(color), plain::Green(color), plain::Red(color)),
                      grid);
    }
    return inks;
}

uint32_t PlainPixel(const BenchPage& page, const PageSettings& settings, int32_t row, int32_t i) {
    const auto pixel = [&](int32_t x, int32_t y) {
        return page.pixels[static_cast<size_t>(y) * static_cast<size_t>(page.width) + static_cast<size_t>(x)];
    };
    const int32_t w = page.width, h = page.height;
    if (settings.landscape) {
        const bool reversed = settings.rotate180 != settings.mirrorImage;
        return pixel(reversed ? w - 1 - i : i, settings.rotate180 ? h - 1 - row : row);
    }
    if (!settings.rotate180) return pixel(settings.mirrorImage ? row : w - 1 - row, i);
    if (!settings.mirrorImage) return pixel(row, h - 1 - i);
    // One column further right, which behind the last goes on in the next scan line.
    const int32_t x = w - row, y = h - 1 - i;
    if (x < w) return pixel(x, y);
    return y + 1 < h ? pixel(0, y + 1) : 0xFFFFFF;
}

uint32_t PlainPrinted(uint32_t ink, int32_t place, const PageSettings& settings, int16_t dpi) {
    if (ink == 0) return settings.kws ? (dpi == 600 ? 2u : 4u) << 8 * (place % 4) : 0;
    if (settings.colorMode == kColorModeColor) return ink;
    const uint32_t gray = GrayWeight(ink);
    if (settings.colorMode == kColorModeBlackGray) return gray;
    const auto both = static_cast<uint32_t>(gray * 0.67);
    return plain::Ink(0, static_cast<uint32_t>(both * 0.8), both, both);
}

void CheckPage(PageJob& job, const BenchPage& page, const PageSettings& settings, int16_t dpi,
               const std::vector<uint32_t>& inks) {
    const int32_t rows = settings.landscape ? page.height : page.width;
    const int32_t width = settings.landscape ? page.width : page.height;
    int32_t seen = 0, wrongRows = 0;
    job.Send([&](int32_t row, const uint32_t* pixels) {
        ++seen;
        for (int32_t i = 0; i < width; ++i) {
            uint32_t want = PlainPrinted(inks[PlainPixel(page, settings, row, i)], i, settings, dpi);
            if (row == 0 && i == 0 && want == 0) want = kFirstPixelMarker;
            if (pixels[i] == want) continue;
            ++wrongRows;
            return;
        }
    });
    if (seen == rows && wrongRows == 0) return;
    throw CheckFailure(std::to_string(wrongRows) + " wrong rows, " + std::to_string(seen) + " of " +
                       std::to_string(rows) + " sent");
}

void CheckCache(const std::vector<uint32_t>& inks, const char* what) {
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        if (g_colorCache[color] != inks[color]) {
            throw CheckFailure(std::string(what) + " is wrong at colour " + std::to_string(color));
        }
    }
}

}  // namespace orvex::bench
