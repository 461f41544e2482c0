// Sums and percentages of ink amounts.
#pragma once

#include "driver/color/ink.h"

namespace orvex::tools::profile {

constexpr double kFullAmount = 255;  // 100 percent

// Returns the sum of the four amounts, 0 to 1020.
constexpr uint32_t TotalInk(InkValue inks) {
    return InkAmount(inks, kBlackInk) + InkAmount(inks, kCyanInk) + InkAmount(inks, kMagentaInk) +
           InkAmount(inks, kYellowInk);
}

constexpr double Percent(double amount) {
    return amount * 100 / kFullAmount;
}

}  // namespace orvex::tools::profile
