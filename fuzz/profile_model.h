// The plain definition of a profile's head, walked over the whole file in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct TagWalk {
    bool accepted = false;    // header and tags are right
    std::string name;         // up to its first zero byte; as far as the walk got
    signed char code = 0x30;  // the resolution code, likewise
    size_t colorsAt = 0;      // offset of the colours, of an accepted file
};

// `nameSize` is the room for the name with its terminator.
TagWalk WalkTags(std::string_view file, size_t nameSize, bool at600Dpi);

// Whether the version is known and exactly its colours, in both variants, follow from there on.
bool HoldsColors(std::string_view file, size_t colorsAt);
