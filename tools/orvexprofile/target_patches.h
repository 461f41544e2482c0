// The patches of the measurement target, and the profile through which its page prints them.
//
// Each patch is an ink value that gets a color of its own: a grid color of a version 5 profile, whose inks
// the driver prints without interpolation. Amounts are even or full, so that the variant for 600 dpi, with
// half of them, has exactly the same shares of full ink.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

struct TargetPatch {
    InkValue inks;   // of the variant for other resolutions, where full ink is 255
    uint32_t color;  // on the page; close to that of the print, so that the page looks like it
};

// Returns the patches without those whose inks are more than `limitPercent` together. Paper is the first, and
// the solid inks K, C, M and Y are always there.
std::vector<TargetPatch> MakeTargetPatches(double limitPercent);

// Returns the profile that prints each patch's color with the patch's inks, and all other colors with none.
Profile MakeTargetProfile(const std::vector<TargetPatch>& patches);

}  // namespace orvex::tools::profile
