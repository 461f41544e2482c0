#include "tests/plain/profile.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "driver/color/color_cache.h"
#include "tests/driver/profiles/profile_bytes.h"

namespace orvex::plain {

namespace {

// The place in the cache of a byte of a variant's colors.
struct CachePlace {
    uint32_t entry;
    int shift;
};

constexpr uint32_t AllEven(uint32_t number) {
    return ColorIndex(2 * (number >> 14), 2 * (number >> 7 & 127), 2 * (number & 127));
}

constexpr uint32_t GridPoint(uint32_t number) {
    return ColorIndex(GridValue(static_cast<int>(number % 17)), GridValue(static_cast<int>(number / 17 % 17)),
                      GridValue(static_cast<int>(number / 289)));
}

CachePlace PlaceOf(uint8_t version, uint32_t at) {
    const int byteShift = 8 * static_cast<int>(at % 4);
    const auto planeShift = [at](int planeBits) { return 24 - 8 * static_cast<int>(at >> planeBits); };
    switch (version) {
        case 1:
            return {at / 4, byteShift};
        case 2:
            return {at & 0xFFFFFF, planeShift(24)};
        case 3:
            return {AllEven(at / 4), byteShift};
        case 4:
            return {AllEven(at & 0x1FFFFF), planeShift(21)};
        default:
            return {GridPoint(at / 4), byteShift};
    }
}

// Returns the entries that the file gives a value other than zero.
std::map<uint32_t, uint32_t> GivenEntries(const SparseFile& file, uint8_t version, uint64_t variantAt) {
    const uint64_t variantEnd = variantAt + ColorsSize(version) / 2;
    std::map<uint32_t, uint32_t> given;
    for (const SparseFile::Run& run : file.runs) {
        for (size_t i = 0; i < run.bytes.size(); ++i) {
            const uint64_t at = run.offset + i;
            if (at < variantAt || at >= variantEnd) continue;
            const CachePlace place = PlaceOf(version, static_cast<uint32_t>(at - variantAt));
            given[place.entry] |= uint32_t{static_cast<uint8_t>(run.bytes[i])} << place.shift;
        }
    }
    return given;
}

bool IsAll(const uint32_t* entries, size_t count, uint32_t value) {
    return entries[0] == value && memcmp(entries, entries + 1, (count - 1) * sizeof *entries) == 0;
}

// Returns whether the all-even colors are zeros and no other color is computed yet.
bool IsHalfGrid(const uint32_t* cache) {
    uint32_t even[256];
    for (uint32_t blue = 0; blue < 256; ++blue) even[blue] = blue % 2 == 0 ? 0 : kNotComputed;
    for (uint32_t row = 0; row < 0x10000; ++row) {
        const uint32_t* blues = cache + size_t{row} * 256;
        const bool same =
            (row & 0x0101) == 0 ? memcmp(blues, even, sizeof even) == 0 : IsAll(blues, 256, kNotComputed);
        if (!same) return false;
    }
    return true;
}

}  // namespace

bool HoldsColors(uint8_t version, uint64_t colorBytes) {
    constexpr uint64_t kSizes[] = {134217728, 134217728, 16777216, 16777216, 39304};
    return version >= 1 && version <= 5 && colorBytes == kSizes[version - 1];
}

bool IsCacheOf(const SparseFile& file, uint8_t version, size_t colorsAt, bool at600Dpi, uint32_t* cache) {
    const uint64_t variantAt = colorsAt + (at600Dpi ? 0 : ColorsSize(version) / 2);
    // Once the given entries are reset, one comparison covers the whole cache.
    for (const auto& [entry, inks] : GivenEntries(file, version, variantAt)) {
        if (cache[entry] != inks) return false;
        cache[entry] = 0;
    }
    if (version == 4) return IsHalfGrid(cache);
    if (version != 5) return IsAll(cache, kCacheEntries, 0);
    for (uint32_t point = 0; point < kGridPoints; ++point) {
        if (cache[GridPoint(point)] != 0) return false;
        cache[GridPoint(point)] = kNotComputed;
    }
    return IsAll(cache, kCacheEntries, kNotComputed);
}

}  // namespace orvex::plain
