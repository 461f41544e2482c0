#include "driver/color/row_conversion.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "driver/color/color_cache.h"

namespace orvex {

namespace {

constexpr uint32_t kPatternSteps = 4;

// A faint dot for each pixel that would get no ink, one ink at a time: K, C, M, Y.
constexpr uint32_t kLightPattern[kPatternSteps] = {0x00000002, 0x00000200, 0x00020000, 0x02000000};
constexpr uint32_t kHeavyPattern[kPatternSteps] = {0x00000004, 0x00000400, 0x00040000, 0x04000000};

const uint32_t* BlankPattern(uint32_t light) {
    return light != 0 ? kLightPattern : kHeavyPattern;
}

// How dark an ink value is, 0 to 255. Each ink counts by the light that it takes, darkened by black: magenta
// by green, cyan by red, yellow by blue.
uint32_t GrayWeight(uint32_t ink) {
    const uint32_t k = ink & 0xFF, c = ink >> 8 & 0xFF, m = ink >> 16 & 0xFF, y = ink >> 24;
    return std::min(static_cast<uint32_t>((m + k) * 0.587 + (c + k) * 0.299 + (y + k) * 0.114), 255u);
}

// The composite grey of each grey weight. Cyan is held at 80 % of magenta and yellow.
constexpr auto kCompositeGrays = [] {
    std::array<uint32_t, 256> grays{};
    for (uint32_t weight = 0; weight < 256; ++weight) {
        const uint32_t magentaAndYellow = static_cast<uint32_t>(weight * 0.67);
        const uint32_t cyan = static_cast<uint32_t>(magentaAndYellow * 0.8);
        grays[weight] = magentaAndYellow << 24 | magentaAndYellow << 16 | cyan << 8;
    }
    return grays;
}();

uint32_t CompositeGray(uint32_t ink) {
    return kCompositeGrays[GrayWeight(ink)];
}

// What is printed for an ink value. No ink stays no ink in each of them.
struct InColor {
    uint32_t operator()(uint32_t ink) const { return ink; }
};

// A grey takes some arithmetic, and is mostly the one of the pixel before.
template <uint32_t (*Gray)(uint32_t ink)>
class InGray {
  public:
    uint32_t operator()(uint32_t ink) {
        if (ink != ink_) {
            ink_ = ink;
            gray_ = Gray(ink);
        }
        return gray_;
    }

  private:
    uint32_t ink_ = 0;
    uint32_t gray_ = 0;
};

// The pixels of a row are taken in blocks, since most of a label is blocks of one colour. A block is some
// turns of the blank-pixel pattern.
constexpr uint32_t kBlock = 2 * kPatternSteps;

__m128i LoadFour(const uint32_t* pixels) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
}

bool IsOneColor(const uint32_t* pixels) {
    const __m128i first = _mm_set1_epi32(static_cast<int>(pixels[0]));
    __m128i same = _mm_cmpeq_epi32(first, LoadFour(pixels));
    for (uint32_t i = 4; i < kBlock; i += 4) {
        same = _mm_and_si128(same, _mm_cmpeq_epi32(first, LoadFour(pixels + i)));
    }
    return _mm_movemask_epi8(same) == 0xFFFF;
}

// How far ahead of the conversion the cache's entries are fetched: most of them are far apart, and many of
// them can be on their way at once. They are fetched into the second-level cache, since the first level would
// lose them again before their turn.
constexpr uint32_t kAhead = 128;

void FetchEntries(const uint32_t* pixels) {
    for (uint32_t i = 0; i < kBlock; ++i) {
        _mm_prefetch(reinterpret_cast<const char*>(g_colorCache + (pixels[i] & kColorBits)), _MM_HINT_T1);
    }
}

// Converts a row. `pattern` is null when blank pixels stay blank.
template <typename Printed>
class RowConverter {
  public:
    explicit RowConverter(const uint32_t* pattern) : pattern_(pattern) {}

    void Convert(uint32_t* destination, const uint32_t* source, uint32_t count) {
        uint32_t block[kBlock];  // what the last block of one colour printed
        uint32_t color = 0;      // its pixel
        bool known = false;
        for (; count >= kBlock; destination += kBlock, source += kBlock, count -= kBlock) {
            if (!IsOneColor(source)) {
                if (count >= kAhead + kBlock) FetchEntries(source + kAhead);
                ConvertPixels(destination, source, kBlock);
                continue;
            }
            if (!known || source[0] != color) {
                color = source[0];
                for (uint32_t i = 0; i < kBlock; ++i) block[i] = ConvertPixel(color, i);
                // An ink that is not settled may be another one at the color's next block. Within a block it
                // is not: a look-up that leaves its entry missing changes nothing.
                known = InksAreSettled();
            }
            memcpy(destination, block, sizeof block);
        }
        ConvertPixels(destination, source, count);
    }

  private:
    // Of a block, or of what is left behind the last one.
    void ConvertPixels(uint32_t* destination, const uint32_t* source, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) destination[i] = ConvertPixel(source[i], i);
    }
    // What a pixel at the given place of its block prints.
    uint32_t ConvertPixel(uint32_t pixel, uint32_t place) {
        uint32_t ink = g_colorCache[pixel & kColorBits];
        if (ink == kNotComputed) [[unlikely]]
            ink = LookupColor(pixel);
        if (ink == 0 && pattern_ != nullptr) return pattern_[place % kPatternSteps];
        return printed_(ink);
    }

    const uint32_t* pattern_;
    Printed printed_;
};

}  // namespace

int32_t ConvertRow(uint32_t* destination, const uint32_t* source, uint32_t count, uint32_t reserved,
                   int32_t kws, uint32_t lightPattern, uint32_t grayMode) {
    (void)reserved;
    const uint32_t* pattern = kws != 0 ? BlankPattern(lightPattern) : nullptr;
    switch (grayMode) {
        case kColorModeCompositeGray:
            RowConverter<InGray<CompositeGray>>(pattern).Convert(destination, source, count);
            break;
        case kColorModeBlackGray:
            RowConverter<InGray<GrayWeight>>(pattern).Convert(destination, source, count);
            break;
        default:
            RowConverter<InColor>(pattern).Convert(destination, source, count);
            break;
    }
    return 0;
}

void FillBlankPattern(uint32_t* destination, uint32_t count, uint32_t lightPattern) {
    const uint32_t* pattern = BlankPattern(lightPattern);
    for (uint32_t i = 0; i < count; ++i) destination[i] = pattern[i % kPatternSteps];
}

}  // namespace orvex
