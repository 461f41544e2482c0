// The pages that are measured. They are computed, so that every run and machine measures the same pixels.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace orvex::bench {

enum class PageArt {
    kLabel,  // text, lines, a barcode, flat areas, a logo, much white
    kPhoto,  // smooth, with very many distinct colors
    kNoise,  // random colors, the worst case
};

std::string_view NameOf(PageArt art);

// Pixels are 0x00RRGGBB, scan lines from the top without gaps.
struct BenchPage {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;

    size_t Bytes() const { return pixels.size() * sizeof(uint32_t); }
    uint32_t Pixel(int32_t x, int32_t y) const {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

// A portrait paper size at a resolution.
struct PageSize {
    std::string_view name;
    int16_t widthTenthsMm;
    int16_t heightTenthsMm;
    int16_t dpi;
};

inline constexpr PageSize kA4At600 = {"A4 600 dpi", 2100, 2970, 600};
inline constexpr PageSize kA4At300 = {"A4 300 dpi", 2100, 2970, 300};
inline constexpr PageSize kRollLabel = {"100x150 mm 600 dpi", 1000, 1500, 600};

// Returns a page as the graphics engine draws it for either orientation.
BenchPage DrawPage(PageArt art, const PageSize& size, bool landscape);

size_t DistinctColors(const BenchPage& page);

}  // namespace orvex::bench
