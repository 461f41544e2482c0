// The plain definition of a color cache without a profile, fast enough to go over all of it often. Compiled
// without sanitizers, which watch the driver and not its measure.
#pragma once

#include <cstdint>

namespace orvex::fuzz {

// Whether each of the 2^24 entries is the generic conversion of its colour at `percent` of ink, 50 or 100.
bool IsGenericCache(const uint32_t* cache, int percent);

}  // namespace orvex::fuzz
