// Colour profile files (*.zvp): the reader, and the loader that fills the colour cache for a job.
#pragma once

#include <cstddef>
#include <cstdint>

// How the resolution selector of zvc_load_profile reads.
enum ResolutionSelector : int32_t { kResolution300 = 0, kResolution600 = 1, kResolutionOther = 2 };

// Loads the profile at `path` into the colour cache, or the generic conversion when `path` is null or can't be read.
// Writes the engine's resolution code, and the profile's name into `name` of `nameSize` bytes ("Default" when no path
// is given). Returns the cache kind in force afterwards, 1 to 5.
int32_t zvc_load_profile(const char* path, int32_t resolution, signed char* resolutionCode, char* name,
                         size_t nameSize);
