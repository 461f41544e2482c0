// What the profile tool counts inks with.
#pragma once

#include <cstdint>

#include "driver/color/color_cache.h"
#include "driver/color/ink.h"

namespace orvex::tools::profile {

constexpr double kFullAmount = 255;  // the amount that percentages count as 100
constexpr uint32_t kWhite = 0xFFFFFF;

// The four amounts together, 0 to 1020.
constexpr uint32_t TotalInk(uint32_t inks) {
    return InkAmount(inks, kBlackInk) + InkAmount(inks, kCyanInk) + InkAmount(inks, kMagentaInk) +
           InkAmount(inks, kYellowInk);
}

constexpr double Percent(double amount) {
    return amount * 100 / kFullAmount;
}

// All four inks full is the driver's mark of an entry that is not computed yet, so that no profile may hold
// it. The nearest value takes its place, with black one step short of full.
constexpr uint32_t AvoidMark(uint32_t inks) {
    return inks == kNotComputed ? PackInks(254, 255, 255, 255) : inks;
}

}  // namespace orvex::tools::profile
