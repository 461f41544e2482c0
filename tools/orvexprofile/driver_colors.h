// The colors of the profile that is loaded into the driver, as the driver looks them up.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Returns the entries that the loaded profile of this version stores, in the order of a Variant.
Variant LoadedEntries(int version);

// Returns whether the driver prints every color of a profile of this version as the profile means it. It does
// not in the versions 3 and 4: colors between the stored ones get no ink or are computed from other colors.
bool PrintsAsMeant(int version);

// Returns a source of the inks that the loaded profile of this version means for any color: the driver's, or,
// unless PrintsAsMeant, those on the straight line between the stored neighbors. It is valid as long as the
// profile stays loaded.
InkSource LoadedColors(int version);

// Returns what the driver prints for each of `colors` through the loaded profile.
std::vector<uint32_t> PrintedInks(std::span<const uint32_t> colors);

// Returns all colors whose components are multiples of `step` or 255; every color when `step` is 1.
std::vector<uint32_t> ColorsEvery(int step);

}  // namespace orvex::tools::profile
