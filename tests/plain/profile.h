// Plain definition of a profile: its header and tags, and the color cache that its colors make.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tests/plain/sparse_file.h"

namespace orvex::plain {

struct TagWalk {
    bool accepted = false;    // header and tags are sound
    std::string name;         // up to its first zero byte; the last one that the walk met
    signed char code = 0x30;  // the last resolution code that the walk met
    size_t colorsAt = 0;      // offset of an accepted file's colors
};

// Walks the tags of a file of `size` bytes, all of which are in `beginning`. A name that does not fit into
// `nameSize` bytes with its terminator ends the walk.
TagWalk WalkTags(std::string_view beginning, uint64_t size, size_t nameSize, bool at600Dpi);
inline TagWalk WalkTags(std::string_view file, size_t nameSize, bool at600Dpi) {
    return WalkTags(file, file.size(), nameSize, at600Dpi);
}

// Returns whether the version is known and has exactly that many bytes of colors in its two variants.
bool HoldsColors(uint8_t version, uint64_t colorBytes);
inline bool HoldsColors(std::string_view file, size_t colorsAt) {
    return HoldsColors(static_cast<uint8_t>(file[3]), file.size() - colorsAt);
}

// Returns whether each of the 2^24 entries of `cache` is what the colors of a file make of it. Overwrites the
// cache.
bool IsCacheOf(const SparseFile& file, uint8_t version, size_t colorsAt, bool at600Dpi, uint32_t* cache);

}  // namespace orvex::plain
