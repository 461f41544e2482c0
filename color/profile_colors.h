// The colours of a profile file, in one of five encodings. Each comes twice, one behind the other: for
// printing at 600 dpi, then for other resolutions; only the one that is wanted is read.
#pragma once

#include "color/profile_header.h"

// Reads the colours that start at the file's position into `cache`, 2^24 entries on a 16-byte boundary. False
// when the version is unknown, when the colours' size is not the version's own, or when the colours of
// version 1 can't be read, with an Error line; the cache may then be filled in part. Entries of other
// versions that can't be read stay as they were prepared: 0 or the sentinel.
bool ReadProfileColors(BlockReader& file, const ProfileHeader& header, bool at600Dpi, uint32_t* cache);
