// The colour cache: one ink value for each of the 2^24 colours a pixel can have, filled by the profile loader
// in whole or in part; what is missing is computed when a pixel first asks for it.
//
// An ink value holds, from the least significant byte up, the amounts of K, C, M and Y, each 0 (none) to 255.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvex {

constexpr size_t kCacheEntries = size_t{1} << 24;
constexpr uint32_t kColorBits = 0xFFFFFF;  // of a pixel; its top byte says nothing
constexpr uint32_t kNotComputed = 0xFFFFFFFF;
constexpr int kGridSteps = 17;                                     // grid values on each axis
constexpr int kGridPoints = kGridSteps * kGridSteps * kGridSteps;  // 4,913

// How the table was filled, and so how a missing entry is computed. Any other kind computes nothing.
enum CacheKind : int32_t {
    kEntries = 1,          // every entry is there
    kPlanes = 2,           // the same
    kHalfGridEntries = 3,  // the colours with even components are there, all others are 0 and stay so
    kHalfGridPlanes = 4,   // the colours with even components are there; others: AverageHalfGridEntry
    kGrid = 5,             // the grid points are there; others: InterpolateGridEntry (prism_interpolation.h)
};

// The table, indexed by ColorIndex, and its kind, which SetCacheKind sets. One job renders at a time in a
// process; nothing here is locked.
extern uint32_t g_colorCache[kCacheEntries];
extern int32_t g_cacheKind;

// Says how the table is filled, once it is. The grid points of a kGrid table must not be written behind it.
void SetCacheKind(int32_t kind);

constexpr uint32_t ColorIndex(uint32_t red, uint32_t green, uint32_t blue) {
    return red << 16 | green << 8 | blue;
}

// The colour component of grid step 0 to 16: 16 times the step, but 255 for the last.
constexpr uint32_t GridValue(int step) {
    return step < kGridSteps - 1 ? 16u * static_cast<uint32_t>(step) : 255u;
}

// The ink value of a pixel (its top byte is ignored), by the rule of the current cache kind. A computed value
// is kept in the table.
uint32_t LookupColor(uint32_t pixel);

// Returns whether every color looked up since the table was filled keeps the ink that it got. An entry that
// is still missing after its look-up does not: it changes once the look-up of another color fills an entry
// that it is computed from.
bool InksAreSettled();

// Computes the entry of a colour as the average of its even neighbours in the cache, taken as colours of
// light, and stores it in `entry`.
void AverageHalfGridEntry(uint8_t blue, uint8_t green, uint8_t red, uint32_t* entry);

}  // namespace orvex
