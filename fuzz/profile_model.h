// The plain definition of a profile: its head, walked over the file's beginning in memory, and the color
// cache that its colors make.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/sparse_file.h"

namespace orvex::fuzz {

struct TagWalk {
    bool accepted = false;    // header and tags are right
    std::string name;         // up to its first zero byte; as far as the walk got
    signed char code = 0x30;  // the resolution code, likewise
    size_t colorsAt = 0;      // offset of the colours, of an accepted file
};

// Of a file of `size` bytes, `beginning` having all of its tags; or of a file in memory. `nameSize` is the
// room for the name with its terminator.
TagWalk WalkTags(std::string_view beginning, uint64_t size, size_t nameSize, bool at600Dpi);
inline TagWalk WalkTags(std::string_view file, size_t nameSize, bool at600Dpi) {
    return WalkTags(file, file.size(), nameSize, at600Dpi);
}

// Whether the version is known and has exactly that many bytes of colors, in both variants.
bool HoldsColors(uint8_t version, uint64_t colorBytes);
// The same of a file in memory, whose colors begin there.
inline bool HoldsColors(std::string_view file, size_t colorsAt) {
    return HoldsColors(static_cast<uint8_t>(file[3]), file.size() - colorsAt);
}

// Requires that the color cache is what a file of that version, whose colors begin there, makes of it: each
// of its 2^24 entries. The cache is worth nothing afterwards.
void CheckCache(const SparseFile& file, uint8_t version, size_t colorsAt, bool at600Dpi);

}  // namespace orvex::fuzz
