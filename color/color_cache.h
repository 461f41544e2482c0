// The colour cache: one ink value for each of the 2^24 colours a pixel can have, filled by the profile loader in whole
// or in part; what is missing is computed when a pixel first asks for it.
//
// An ink value holds, from the least significant byte up, the amounts of K, C, M and Y, each 0 (none) to 255.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr size_t kCacheEntries = size_t{1} << 24;
constexpr uint32_t kNotComputed = 0xFFFFFFFF;
constexpr int kGridSteps = 17;                                             // grid values on each axis
constexpr int kGridPoints = kGridSteps * kGridSteps * kGridSteps;  // 4,913

// The table, indexed by (red << 16) | (green << 8) | blue, and how it was filled (1 to 5). One job renders at a time in
// a process; nothing here is locked.
extern uint32_t g_colorCache[kCacheEntries];
extern int32_t g_cacheKind;

// The colour component of grid step 0 to 16: 16 times the step, but 255 for the last.
constexpr uint32_t GridValue(int step) { return step < kGridSteps - 1 ? 16u * static_cast<uint32_t>(step) : 255u; }

// The ink value of a pixel (its top byte is ignored), by the rule of the current cache kind.
uint32_t LookupColor(uint32_t pixel);
