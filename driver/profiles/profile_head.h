// The head of a profile as the driver reads it: the name and the resolution code, with a log line for each
// step.
#pragma once

#include "driver/profiles/profile_reader.h"

namespace orvex {

// Where the tags' data goes. A later tag replaces an earlier one of its kind.
struct TagTargets {
    char* name;                   // receives the profile's name, terminated
    size_t nameCapacity;          // in bytes, at most kProfileNameCapacity
    signed char* resolutionCode;  // receives the engine's resolution code; null if it is not wanted
    bool at600Dpi;                // which of the two codes
};

// Reads the header and the tags of the file just opened from `path`, and leaves it at the colors. Returns
// false after logging a problem: at the level `headerErrors` in the header, at Info in the tags. The targets
// keep what was read before.
bool ReadProfileHead(BlockReader& file, const char* path, LogLevel headerErrors, const TagTargets& targets,
                     ProfileHeader* header);

}  // namespace orvex
