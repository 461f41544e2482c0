#include "bench/page_checks.h"

#include <string>

#include "bench/contest.h"
#include "tests/plain/page_order.h"
#include "tests/plain/plain_tables.h"

namespace orvex::bench {

std::vector<uint32_t> PlainInks(const std::filesystem::path& profile, ResolutionSelector resolution) {
    signed char code;
    char name[512];
    if (zvc_load_profile(profile.string().c_str(), resolution, &code, name, sizeof name) != kGrid) {
        throw CheckFailure(profile.string() + " is not a profile of version 5");
    }
    std::vector<uint32_t> inks = plain::PrismTable(g_colorCache);
    for (uint32_t color = 0; color < kCacheEntries; ++color) {
        if (plain::IsGridPoint(color)) inks[color] = g_colorCache[color];
    }
    return inks;
}

plain::RowOptions PlainOptions(const PageSettings& settings, int16_t dpi) {
    return {settings.kws, dpi == 600, static_cast<uint32_t>(settings.colorMode)};
}

void CheckPage(PageJob& job, const BenchPage& page, const PageSettings& settings, int16_t dpi,
               const std::vector<uint32_t>& inks) {
    constexpr uint32_t kFirstPixelMarker = 2;
    const int32_t rows = settings.order.landscape ? page.height : page.width;
    const int32_t width = settings.order.landscape ? page.width : page.height;
    const plain::RowOptions options = PlainOptions(settings, dpi);
    int32_t seen = 0, wrongRows = 0;
    job.Send([&](int32_t row, const uint32_t* pixels) {
        ++seen;
        for (int32_t i = 0; i < width; ++i) {
            const uint32_t color = plain::PagePixel(page, settings.order, row, i);
            uint32_t want = plain::Print(inks[color], static_cast<size_t>(i), options);
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
            throw CheckFailure(std::string(what) + " is wrong at color " + std::to_string(color));
        }
    }
}

}  // namespace orvex::bench
