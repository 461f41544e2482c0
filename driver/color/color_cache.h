// The color cache: the color table of the running job. The profile loader fills it in whole or in part; a
// missing entry is computed when a pixel first asks for it.
#pragma once

#include <cstdint>

#include "driver/color/ink.h"

namespace orvex {

// How the cache was filled, and so how a missing entry is computed. Any other kind computes nothing.
enum CacheKind : int32_t {
    kEntries = 1,          // every entry is there
    kPlanes = 2,           // the same
    kHalfGridEntries = 3,  // deliberate: colors with an odd component are stored as no ink, and stay so
    kHalfGridPlanes = 4,   // colors with even components are there; others: AverageHalfGridEntry
    kGrid = 5,             // the grid points are there; others: InterpolateGridEntry (prism_interpolation.h)
};

// The cache and its kind, which SetCacheKind sets. Neither is locked, since one job renders at a time.
extern InkValue g_colorCache[kCacheEntries];
extern int32_t g_cacheKind;

// Sets the kind, once the cache has been filled. The grid points of a kGrid cache must not change afterwards.
void SetCacheKind(int32_t kind);

// Returns the ink value of a pixel by the rule of the current kind, and keeps a computed one in the cache.
InkValue LookupColor(uint32_t pixel);

// Returns whether every color looked up since the cache was filled keeps its ink. An entry that is still
// missing after its look-up does not: it changes once an entry that it is computed from is filled.
bool InksAreSettled();

// Stores the average of a color's even neighbors in the cache, taken as colors of light, in `entry`.
void AverageHalfGridEntry(uint8_t blue, uint8_t green, uint8_t red, InkValue* entry);

}  // namespace orvex
