#include "color/row_conversion.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "color/color_cache.h"

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
uint32_t GreyWeight(uint32_t ink) {
    const uint32_t k = ink & 0xFF, c = ink >> 8 & 0xFF, m = ink >> 16 & 0xFF, y = ink >> 24;
    return std::min(static_cast<uint32_t>((m + k) * 0.587 + (c + k) * 0.299 + (y + k) * 0.114), 255u);
}

// The composite grey of each grey weight. Cyan is held at 80 % of magenta and yellow.
constexpr auto kCompositeGreys = [] {
    std::array<uint32_t, 256> greys{};
    for (uint32_t weight = 0; weight < 256; ++weight) {
        const uint32_t magentaAndYellow = static_cast<uint32_t>(weight * 0.67);
        const uint32_t cyan = static_cast<uint32_t>(magentaAndYellow * 0.8);
        greys[weight] = magentaAndYellow << 24 | magentaAndYellow << 16 | cyan << 8;
    }
    return greys;
}();

// What is printed for an ink value. No ink stays no ink in each of them.
uint32_t InColour(uint32_t ink) {
    return ink;
}

uint32_t InCompositeGrey(uint32_t ink) {
    return kCompositeGreys[GreyWeight(ink)];
}

uint32_t InBlackOnly(uint32_t ink) {
    return GreyWeight(ink);
}

// The pixels of a row are taken in blocks, since most of a label is blocks of one colour. A block is one turn
// of the blank-pixel pattern.
constexpr uint32_t kBlock = kPatternSteps;

bool IsOneColour(const uint32_t* pixels) {
    uint32_t differing = 0;
    for (uint32_t i = 1; i < kBlock; ++i) differing |= pixels[i] ^ pixels[0];
    return differing == 0;
}

// How far ahead of the conversion the cache's entries are fetched: most of them are far apart, and many of
// them can be on their way at once.
constexpr uint32_t kAhead = 32;

void FetchEntries(const uint32_t* pixels) {
    for (uint32_t i = 0; i < kBlock; ++i) {
        _mm_prefetch(reinterpret_cast<const char*>(g_colorCache + (pixels[i] & kColorBits)), _MM_HINT_T0);
    }
}

// What a pixel at the given place of its block prints. `pattern` is null when blank pixels stay blank.
template <uint32_t (*Printed)(uint32_t ink)>
uint32_t ConvertPixel(uint32_t pixel, uint32_t place, const uint32_t* pattern) {
    uint32_t ink = g_colorCache[pixel & kColorBits];
    if (ink == kNotComputed) [[unlikely]]
        ink = LookupColor(pixel);
    if (ink == 0 && pattern != nullptr) return pattern[place];
    return Printed(ink);
}

template <uint32_t (*Printed)(uint32_t ink)>
void ConvertPixels(uint32_t* destination, const uint32_t* source, uint32_t count, const uint32_t* pattern) {
    for (uint32_t i = 0; i < count; ++i) destination[i] = ConvertPixel<Printed>(source[i], i, pattern);
}

template <uint32_t (*Printed)(uint32_t ink)>
void ConvertBlocks(uint32_t* destination, const uint32_t* source, uint32_t count, const uint32_t* pattern) {
    uint32_t block[kBlock];  // what the last block of one colour printed
    uint32_t color = 0;      // its pixel
    bool known = false;
    for (; count >= kBlock; destination += kBlock, source += kBlock, count -= kBlock) {
        if (!IsOneColour(source)) {
            if (count >= kAhead + kBlock) FetchEntries(source + kAhead);
            ConvertPixels<Printed>(destination, source, kBlock, pattern);
            continue;
        }
        if (!known || source[0] != color) {
            color = source[0];
            known = true;
            for (uint32_t i = 0; i < kBlock; ++i) block[i] = ConvertPixel<Printed>(color, i, pattern);
        }
        memcpy(destination, block, sizeof block);
    }
    ConvertPixels<Printed>(destination, source, count, pattern);
}

}  // namespace

int32_t ConvertRow(uint32_t* destination, const uint32_t* source, uint32_t count, uint32_t reserved,
                   int32_t kws, uint32_t lightPattern, uint32_t greyMode) {
    (void)reserved;
    const uint32_t* pattern = kws != 0 ? BlankPattern(lightPattern) : nullptr;
    switch (greyMode) {
        case kCompositeGrey:
            ConvertBlocks<InCompositeGrey>(destination, source, count, pattern);
            break;
        case kBlackOnlyGrey:
            ConvertBlocks<InBlackOnly>(destination, source, count, pattern);
            break;
        default:
            ConvertBlocks<InColour>(destination, source, count, pattern);
            break;
    }
    return 0;
}

void FillBlankPattern(uint32_t* destination, uint32_t count, uint32_t lightPattern) {
    const uint32_t* pattern = BlankPattern(lightPattern);
    for (uint32_t i = 0; i < count; ++i) destination[i] = pattern[i % kPatternSteps];
}
