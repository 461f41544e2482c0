#include "driver/color/row_conversion.h"

#include <simde/x86/sse2.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "driver/color/color_cache.h"

namespace orvex {

namespace {

constexpr uint32_t kPatternSteps = 4;

// A faint dot for each pixel that would get no ink, one ink at a time: K, C, M, Y.
constexpr InkValue kLightPattern[kPatternSteps] = {0x00000002, 0x00000200, 0x00020000, 0x02000000};
constexpr InkValue kHeavyPattern[kPatternSteps] = {0x00000004, 0x00000400, 0x00040000, 0x04000000};

const InkValue* BlankPattern(uint32_t light) {
    return light != 0 ? kLightPattern : kHeavyPattern;
}

// Returns how dark an ink value is, 0 to 255; as an ink value, that is a gray of K alone. Each ink counts by
// the light that it takes, darkened by black: magenta by green, cyan by red, yellow by blue.
uint32_t GrayWeight(InkValue inks) {
    const uint32_t k = InkAmount(inks, kBlackInk), c = InkAmount(inks, kCyanInk),
                   m = InkAmount(inks, kMagentaInk), y = InkAmount(inks, kYellowInk);
    return std::min(static_cast<uint32_t>((m + k) * 0.587 + (c + k) * 0.299 + (y + k) * 0.114), 255u);
}

// The composite gray of each gray weight. Cyan is kept at 80 % of magenta and yellow.
constexpr auto kCompositeGrays = [] {
    std::array<InkValue, 256> grays{};
    for (uint32_t weight = 0; weight < 256; ++weight) {
        const uint32_t magentaAndYellow = static_cast<uint32_t>(weight * 0.67);
        const uint32_t cyan = static_cast<uint32_t>(magentaAndYellow * 0.8);
        grays[weight] = PackInks(0, cyan, magentaAndYellow, magentaAndYellow);
    }
    return grays;
}();

InkValue CompositeGray(InkValue inks) {
    return kCompositeGrays[GrayWeight(inks)];
}

// Each of these returns what is printed for an ink value; no ink stays no ink.
struct InColor {
    InkValue operator()(InkValue inks) const { return inks; }
};

// Computing a gray is costly and neighbors usually share it, so the last one is kept.
template <InkValue (*Gray)(InkValue inks)>
class InGray {
  public:
    InkValue operator()(InkValue inks) {
        if (inks != inks_) {
            inks_ = inks;
            gray_ = Gray(inks);
        }
        return gray_;
    }

  private:
    InkValue inks_ = {};
    InkValue gray_ = {};
};

// Rows are converted in blocks, since large parts of a label have one color. The blank-pixel pattern fits
// into a block a whole number of times.
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

// Pixels between the one that is converted and the one whose entry is fetched, so that many entries are on
// their way at once. They go to the second-level cache: the first level would lose them before their turn.
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
    explicit RowConverter(const InkValue* pattern) : pattern_(pattern) {}

    void Convert(InkValue* destination, const uint32_t* source, uint32_t count) {
        InkValue block[kBlock];  // what the last block of one color printed
        uint32_t color = {};     // its pixel
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
                // An ink that is not settled may differ at the color's next block. It is the same all through
                // a block: a look-up that leaves its entry missing changes nothing.
                known = InksAreSettled();
            }
            memcpy(destination, block, sizeof block);
        }
        ConvertPixels(destination, source, count);
    }

  private:
    // Converts the pixels of a block one by one, or those after the last block.
    void ConvertPixels(InkValue* destination, const uint32_t* source, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) destination[i] = ConvertPixel(source[i], i);
    }
    // Returns what a pixel at the given place of its block prints.
    InkValue ConvertPixel(uint32_t pixel, uint32_t place) {
        InkValue inks = g_colorCache[pixel & kColorBits];
        if (inks == kNotComputed) [[unlikely]]
            inks = LookupColor(pixel);
        if (inks == 0 && pattern_ != nullptr) return pattern_[place % kPatternSteps];
        return printed_(inks);
    }

    const InkValue* pattern_;
    Printed printed_;
};

}  // namespace

int32_t ConvertRow(InkValue* destination, const uint32_t* source, uint32_t count, uint32_t reserved,
                   int32_t kws, uint32_t lightPattern, uint32_t colorMode) {
    (void)reserved;
    const InkValue* pattern = kws != 0 ? BlankPattern(lightPattern) : nullptr;
    switch (colorMode) {
        case kColorModeCompositeGray:
            RowConverter<InGray<CompositeGray>>(pattern).Convert(destination, source, count);
            break;
        case kColorModeBlackGray:
            RowConverter<InGray<GrayWeight>>(pattern).Convert(destination, source, count);
            break;
        default:
            RowConverter<InColor>(pattern).Convert(destination, source, count);
    }
    return 0;
}

void FillBlankPattern(InkValue* destination, uint32_t count, uint32_t lightPattern) {
    const InkValue* pattern = BlankPattern(lightPattern);
    for (uint32_t i = 0; i < count; ++i) destination[i] = pattern[i % kPatternSteps];
}

}  // namespace orvex
