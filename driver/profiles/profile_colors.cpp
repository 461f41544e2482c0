#include "driver/profiles/profile_colors.h"

#include <simde/x86/sse2.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "driver/color/color_cache.h"
#include "driver/color/ink.h"

namespace orvex {

namespace {

constexpr uint32_t kHalfGridSteps = 128;  // even components: 0, 2, ..., 254

// One encoding of the colors.
struct ColorLayout {
    uint8_t version;
    int prepared;        // the byte that the cache is filled with beforehand
    size_t variantSize;  // in bytes
    // Reads a variant into the cache and returns how many bytes came.
    size_t (*read)(BlockReader& file, uint32_t* cache);
};

constexpr int kNotPrepared = -1;

// Reads version 1: all entries.
size_t ReadEntries(BlockReader& file, uint32_t* cache) {
    return file.Read(cache, kCacheEntries * sizeof *cache);
}

// A piece of each ink's plane. It is not on a thread's stack, since one profile is read at a time.
constexpr size_t kPiece = 32768;
alignas(16) uint8_t planePieces[kInks][kPiece];

// Puts entries together out of the pieces, 16 at a time. The stores bypass the caches, for the next pieces.
void WeavePlanes(uint32_t* entries) {
    const auto load = [](Ink ink, size_t first) {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(planePieces[ink] + first));
    };
    for (size_t first = 0; first < kPiece; first += 16) {
        const __m128i k = load(kBlackInk, first), c = load(kCyanInk, first);
        const __m128i m = load(kMagentaInk, first), y = load(kYellowInk, first);
        const __m128i kc[] = {_mm_unpacklo_epi8(k, c), _mm_unpackhi_epi8(k, c)};
        const __m128i my[] = {_mm_unpacklo_epi8(m, y), _mm_unpackhi_epi8(m, y)};
        auto* out = reinterpret_cast<__m128i*>(entries + first);
        for (int half = 0; half < 2; ++half) {
            _mm_stream_si128(out++, _mm_unpacklo_epi16(kc[half], my[half]));
            _mm_stream_si128(out++, _mm_unpackhi_epi16(kc[half], my[half]));
        }
    }
}

// Reads version 2: a plane of bytes for each ink, from Y down to K. Missing bytes count as no ink.
size_t ReadPlanes(BlockReader& file, uint32_t* cache) {
    const int64_t firstPlane = file.Position();
    size_t total = 0;
    for (size_t first = 0; first < kCacheEntries; first += kPiece) {
        for (size_t plane = 0; plane < size_t{kInks}; ++plane) {
            file.Seek(firstPlane + static_cast<int64_t>(plane * kCacheEntries + first));
            uint8_t* piece = planePieces[kInks - 1 - plane];
            const size_t came = file.Read(piece, kPiece);
            memset(piece + came, 0, kPiece - came);
            total += came;
        }
        WeavePlanes(cache + first);
    }
    _mm_sfence();
    return total;
}

// Reads version 3: the entries of all-even colors, a run of blues for each red and green.
size_t ReadHalfGridEntries(BlockReader& file, uint32_t* cache) {
    size_t total = 0;
    for (uint32_t red = 0; red < kHalfGridSteps; ++red) {
        for (uint32_t green = 0; green < kHalfGridSteps; ++green) {
            uint32_t run[kHalfGridSteps];
            uint32_t* entries = cache + ColorIndex(2 * red, 2 * green, 0);
            const size_t came = file.Read(run, sizeof run);
            for (size_t blue = 0; blue < came / sizeof *run; ++blue) entries[2 * blue] = run[blue];
            total += came;
        }
    }
    return total;
}

// Reads version 4: a plane of bytes of the all-even colors for each ink, from Y down to K.
size_t ReadHalfGridPlanes(BlockReader& file, uint32_t* cache) {
    size_t total = 0;
    for (int shift = 24; shift >= 0; shift -= 8) {
        for (uint32_t red = 0; red < kHalfGridSteps; ++red) {
            for (uint32_t green = 0; green < kHalfGridSteps; ++green) {
                uint8_t run[kHalfGridSteps];
                uint32_t* entries = cache + ColorIndex(2 * red, 2 * green, 0);
                const size_t came = file.Read(run, sizeof run);
                for (size_t blue = 0; blue < came; ++blue) {
                    uint32_t& entry = entries[2 * blue];
                    entry = (entry & ~(0xFFu << shift)) | uint32_t{run[blue]} << shift;
                }
                total += came;
            }
        }
    }
    return total;
}

// Reads version 5: the grid points. Deliberate: unlike in the other versions, blue varies slowest.
size_t ReadGrid(BlockReader& file, uint32_t* cache) {
    size_t total = 0;
    for (int blue = 0; blue < kGridSteps; ++blue) {
        for (int green = 0; green < kGridSteps; ++green) {
            uint32_t run[kGridSteps];
            const size_t came = file.Read(run, sizeof run);
            for (int red = 0; red < static_cast<int>(came / sizeof *run); ++red) {
                cache[ColorIndex(GridValue(red), GridValue(green), GridValue(blue))] = run[red];
            }
            total += came;
        }
    }
    return total;
}

constexpr size_t kAllColors = kCacheEntries * kInks;
constexpr size_t kHalfGrid = size_t{kHalfGridSteps} * kHalfGridSteps * kHalfGridSteps * kInks;
constexpr size_t kGridOnly = size_t{kGridPoints} * kInks;

constexpr ColorLayout kLayouts[] = {
    {kEntries, kNotPrepared, kAllColors, ReadEntries},
    {kPlanes, kNotPrepared, kAllColors, ReadPlanes},
    {kHalfGridEntries, 0x00, kHalfGrid, ReadHalfGridEntries},
    {kHalfGridPlanes, 0xFF, kHalfGrid, ReadHalfGridPlanes},
    {kGrid, 0xFF, kGridOnly, ReadGrid},
};

const ColorLayout* FindLayout(uint8_t version) {
    return std::find_if(std::begin(kLayouts), std::end(kLayouts),
                        [&](const ColorLayout& each) { return each.version == version; });
}

}  // namespace

ProfileProblem CheckColorsSize(const BlockReader& file, const ProfileHeader& header) {
    const ColorLayout* layout = FindLayout(header.version);
    if (layout == std::end(kLayouts)) return {&kUnknownVersion};
    const int64_t found = header.fileSize - file.Position();
    const int64_t needed = 2 * static_cast<int64_t>(layout->variantSize);
    if (found != needed) return {&kWrongColorsSize, {found, needed}};
    return {};
}

ProfileProblem ReadProfileColors(BlockReader& file, const ProfileHeader& header, bool at600Dpi,
                                 uint32_t* cache) {
    if (const ProfileProblem problem = CheckColorsSize(file, header)) return problem;
    const ColorLayout* layout = FindLayout(header.version);
    const int64_t start = file.Position();
    const int64_t variantSize = static_cast<int64_t>(layout->variantSize);
    if (layout->prepared != kNotPrepared) memset(cache, layout->prepared, kCacheEntries * sizeof *cache);
    file.Seek(at600Dpi ? start : start + variantSize);
    const size_t came = layout->read(file, cache);
    // Deliberate: only version 1 is refused when the file ends early. A read that fails refuses every
    // version, since a page full of ink, or without any, serves nobody.
    const bool taken = header.version == kEntries ? came == layout->variantSize : !file.Failed();
    if (!taken) return {&kColorsCut, {static_cast<int64_t>(came), variantSize}};
    return {};
}

}  // namespace orvex
