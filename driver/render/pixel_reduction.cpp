#include "driver/render/pixel_reduction.h"

#include <simde/x86/sse2.h>

#include <algorithm>
#include <cstddef>

namespace orvex {

namespace {

constexpr uint32_t kOpaque = 0xFF000000;
constexpr double kLowestLimit = 100;

// Returns how many halvings make `side` no longer exceed `limit`.
int32_t Halvings(int32_t side, double limit) {
    const double bound = std::min(limit, 2147483647.0);
    int32_t count = 0;
    for (; side > static_cast<int32_t>(bound); side >>= 1) ++count;
    return count;
}

// Sums of the first three bytes of pixels.
class ByteSums {
  public:
    // Adds a line of pixels; their number is a power of two.
    void AddLine(const uint32_t* pixels, ptrdiff_t count) {
        __m128i line[kBytes] = {};  // two sums of each byte
        if (count == 1) {
            Add(_mm_cvtsi32_si128(static_cast<int>(*pixels)), line);
        } else if (count == 2) {
            Add(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels)), line);
        } else {
            for (const uint32_t* end = pixels + count; pixels != end; pixels += 4) {
                Add(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)), line);
            }
        }
        for (int byte = 0; byte < kBytes; ++byte) {
            sums_[byte] += Half(line[byte]) + Half(_mm_srli_si128(line[byte], 8));
        }
    }

    // Returns the opaque mean of 2^shift pixels.
    uint32_t Mean(int32_t shift) const {
        uint32_t pixel = kOpaque;
        for (int byte = 0; byte < kBytes; ++byte) {
            pixel |= static_cast<uint32_t>(sums_[byte] >> shift) << 8 * byte;
        }
        return pixel;
    }

  private:
    static constexpr int kBytes = 3;

    static void Add(__m128i pixels, __m128i (&sums)[kBytes]) {
        for (int byte = 0; byte < kBytes; ++byte) {
            const __m128i alone = _mm_and_si128(pixels, _mm_set1_epi32(0xFF << 8 * byte));
            sums[byte] = _mm_add_epi64(sums[byte], _mm_sad_epu8(alone, _mm_setzero_si128()));
        }
    }
    static uint64_t Half(__m128i sums) { return static_cast<uint64_t>(_mm_cvtsi128_si64(sums)); }

    uint64_t sums_[kBytes] = {};
};

}  // namespace

int32_t ThumbnailScale(int32_t width, int32_t height, double maxWidth, double maxHeight) {
    if (!(maxWidth >= kLowestLimit && maxHeight >= kLowestLimit)) return 0;
    return width / maxWidth > height / maxHeight ? Halvings(width, maxWidth) : Halvings(height, maxHeight);
}

void ReducePixels(const uint32_t* pixels, int32_t width, int32_t height, int32_t scale, uint32_t* out) {
    // Enough blocks are summed together to read pieces of their lines that span many memory pages; few enough
    // for their sums, 12 KiB, to fit on a small stack.
    constexpr int32_t kStrip = 512;
    ByteSums sums[kStrip];
    const ptrdiff_t side = ptrdiff_t{1} << scale;
    for (int32_t y = 0; y < height >> scale; ++y) {
        for (int32_t x = 0; x < width >> scale; x += kStrip) {
            const int32_t blocks = std::min(kStrip, (width >> scale) - x);
            std::fill_n(sums, blocks, ByteSums());
            for (ptrdiff_t row = y * side; row < (y + 1) * side; ++row) {
                const uint32_t* line = pixels + row * width + x * side;
                for (int32_t i = 0; i < blocks; ++i) sums[i].AddLine(line + i * side, side);
            }
            for (int32_t i = 0; i < blocks; ++i) *out++ = sums[i].Mean(2 * scale);
        }
    }
}

}  // namespace orvex
