// Plain definition of what a profile's colors make of the color cache.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tests/plain/sparse_file.h"

namespace orvex::plain {

// Returns whether the version is known and has exactly that many bytes of colors in its two variants.
bool HoldsColors(uint8_t version, uint64_t colorBytes);
inline bool HoldsColors(std::string_view file, size_t colorsAt) {
    return HoldsColors(static_cast<uint8_t>(file[3]), file.size() - colorsAt);
}

// Returns whether each of the 2^24 entries of `cache` is what the colors of a file make of it. Overwrites the
// cache.
bool IsCacheOf(const SparseFile& file, uint8_t version, size_t colorsAt, bool at600Dpi, uint32_t* cache);

}  // namespace orvex::plain
