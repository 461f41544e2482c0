// Profile files as the driver reads them, with a log line for each step, and the loader of a job's profile.
#pragma once

#include "driver/profiles/profile_reader.h"

namespace orvex {

// The folder of the installed profiles. A macro, so that it joins narrow and wide literals alike.
#define ORVEX_PROFILES_FOLDER "profiles\\"

// The values of zvc_load_profile's resolution selector.
enum ResolutionSelector : int32_t { kResolution300 = 0, kResolution600 = 1, kResolutionOther = 2 };

// 1 while a profile or the generic conversion is in place, 0 during a load and before the first one.
inline int32_t g_profileLoaded = {};

// Returns whether `name`, in the narrow code page, can only be a file of the folder that it is looked up in:
// no separator, no colon, neither empty nor "..", short enough for a path, and no device such as NUL or COM1,
// in any case and with any extension. Opening a device could block the spooler.
bool IsBareFileName(const char* name);

// Destinations of the tags' data. A later tag replaces an earlier one of its kind.
struct TagTargets {
    char* name;                   // receives the profile's name, terminated
    size_t nameCapacity;          // in bytes, at most kProfileNameCapacity
    signed char* resolutionCode;  // receives the engine's resolution code; null if it is not wanted
    bool at600Dpi;                // which of the two codes
};

// Reads the header and the tags of the file just opened from `path`, and leaves it at the colors. Returns
// false after logging a problem, at the level `headerErrors` in the header and at Info in the tags.
bool ReadProfileHead(BlockReader& file, const char* path, LogLevel headerErrors, const TagTargets& targets,
                     ProfileHeader* header);

// Reads the profile at `path` into `cache`, 2^24 entries on a 16-byte boundary, which are useless after a
// failure. Writes the engine's resolution code, kDefaultResolutionCode unless the profile has one, and the
// profile's name into `name` of `nameSize` bytes, both as far as the reading got. A relative path
// "profiles\..." is opened only when a bare file name follows. Returns the profile's version, 1 to 5, or 0 on
// any failure; each has its line in the log.
int32_t ReadProfile(const char* path, char* name, size_t nameSize, bool at600Dpi, uint32_t* cache,
                    signed char* resolutionCode);

// Loads the profile at `path` into the color cache, or the generic conversion when `path` is null or can't be
// read. `resolution` is a ResolutionSelector. Writes the engine's resolution code, unless no path is given,
// and the profile's name into `name` of `nameSize` bytes ("Default" when no path is given; `name` may then be
// null); a failed read leaves there what it found. Returns the cache kind in force, 1 to 5.
int32_t zvc_load_profile(const char* path, int32_t resolution, signed char* resolutionCode, char* name,
                         size_t nameSize);

}  // namespace orvex
