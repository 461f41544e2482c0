// The head of a colour profile file: a fixed header, and tags that the profile's colours follow. The loader
// and the catalogue both read it here.
//
//   0  "ZVC"                     the mark
//   3  1 byte                    version, 1 to 5
//   4  4 bytes                   size of the whole file
//   8  4 bytes                   not used
//  12  1 byte                    not used
//  13  2 bytes                   length of the tag area, from byte 12 on
//  15  tags                      1 byte id, 2 bytes length, data
//
// Tag 1 is the profile's name in narrow characters, tag 2 the print engine's resolution codes: one byte for
// other resolutions, then one for 600 dpi. Numbers are little-endian.
#pragma once

#include "driver/profiles/block_reader.h"
#include "driver/support/log.h"

namespace orvex {

struct ProfileHeader {
    uint8_t version = 0;
    int64_t fileSize = 0;
};

// Where the tags' contents go.
struct TagTargets {
    char* name;                   // receives the profile's name, terminated
    size_t nameSize;              // in bytes; a name that does not fit with its terminator is an error
    signed char* resolutionCode;  // receives the engine's resolution code; null when nobody wants it
    bool at600Dpi;                // which of the two codes
};

// Checks the header of the profile just opened from `path`. False when the file is not open or is no whole
// profile, with a log line at the level `errors`. The version is not judged.
bool ReadProfileHeader(BlockReader& file, const char* path, LogLevel errors, ProfileHeader* header);

// Walks over the tags that follow the header and leaves the file at the colours. A later tag replaces an
// earlier one of its kind. False at the first tag that is broken or unknown, with an Info line; what came
// before it stands.
bool ReadProfileTags(BlockReader& file, const TagTargets& targets);

}  // namespace orvex
