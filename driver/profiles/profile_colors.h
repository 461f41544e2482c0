// The colors of a profile file, in one of five encodings. Each has two variants, one after the other: for
// printing at 600 dpi, then for other resolutions; only the one that is wanted is read.
#pragma once

#include "driver/profiles/profile_reader.h"

namespace orvex {

// Returns a problem when the version is unknown, or when what follows the file's position has not the size of
// the version's colors.
ProfileProblem CheckColorsSize(const BlockReader& file, const ProfileHeader& header);

// Reads the colors that start at the file's position into `cache`, 2^24 entries on a 16-byte boundary.
// Returns a problem when the version is unknown, when the colors' size is not the version's own, when reading
// fails, or when a file of version 1 ends early; the cache may then be filled in part. In the other versions,
// entries past an early end stay as they were prepared: 0 or the sentinel.
ProfileProblem ReadProfileColors(BlockReader& file, const ProfileHeader& header, bool at600Dpi,
                                 uint32_t* cache);

}  // namespace orvex
