// Plain definition of a thumbnail's pixels.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace orvex::plain {

// Returns how often a page is halved: until the side that exceeds its limit by more is within it; never if a
// limit is below 100.
inline int32_t ThumbnailScale(int32_t width, int32_t height, double maxWidth, double maxHeight) {
    if (!(maxWidth >= 100 && maxHeight >= 100)) return 0;
    const bool widthGoverns = width / maxWidth > height / maxHeight;
    const double limit = trunc(widthGoverns ? maxWidth : maxHeight);
    int32_t scale = 0;
    for (int32_t side = widthGoverns ? width : height; side > limit; side /= 2) ++scale;
    return scale;
}

// Returns a picture reduced by 2^scale, pixel by pixel: the truncated means of the first three bytes of each
// block, opaque.
inline std::vector<uint32_t> Reduced(const std::vector<uint32_t>& pixels, int32_t width, int32_t height,
                                     int32_t scale) {
    std::vector<uint32_t> reduced;
    const int32_t side = 1 << scale;
    for (int32_t y = 0; y < height / side; ++y) {
        for (int32_t x = 0; x < width / side; ++x) {
            uint32_t mean = 0xFF000000;
            for (int shift = 0; shift < 24; shift += 8) {
                uint64_t sum = 0;
                for (int32_t row = y * side; row < (y + 1) * side; ++row) {
                    for (int32_t column = x * side; column < (x + 1) * side; ++column) {
                        sum += pixels[static_cast<size_t>(row * width + column)] >> shift & 0xFF;
                    }
                }
                mean |= static_cast<uint32_t>(sum / static_cast<uint64_t>(side * side)) << shift;
            }
            reduced.push_back(mean);
        }
    }
    return reduced;
}

}  // namespace orvex::plain
