// The number of random jobs and the seed of their choices, which the command line can change.
#pragma once

#include <cstdint>

namespace orvex {

inline int jobCount = 300;
inline uint64_t jobSeed = 1;

}  // namespace orvex
