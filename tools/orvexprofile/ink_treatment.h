// The treatment of inks before they are stored: the limit of total ink, and the scale of a variant.
#pragma once

#include <cstdint>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

constexpr double kFullAmount = 255;  // 100 percent

// Returns the sum of the four amounts, 0 to 1020.
constexpr uint32_t TotalInk(InkValue inks) {
    return InkAmount(inks, kBlackInk) + InkAmount(inks, kCyanInk) + InkAmount(inks, kMagentaInk) +
           InkAmount(inks, kYellowInk);
}

constexpr double kNoInkLimit = 400;  // percent: four inks, full
constexpr double kLeastInkLimit = 100;
constexpr double kLeastScale = 1;  // percent
constexpr double kLargestScale = 200;

// At 600 dpi four dots take the place of one at 300, so that variant usually has half the amounts.
constexpr double kUsualScaleAt600 = 50;
constexpr double kUsualScaleOther = 100;

// Lowers C, M and Y in proportion until all inks together are at most `limitPercent`; 100 is one full ink.
// Black stays, since it prints text and shadows with the least ink.
uint32_t LimitInk(uint32_t inks, double limitPercent);

// Multiplies every amount, rounds it and cuts it at full. No ink stays no ink.
uint32_t ScaleInk(uint32_t inks, double scalePercent);

// The treatment that makes the two variants of a profile from one source. The limit counts before scaling.
struct InkTreatment {
    double limit = kNoInkLimit;
    double scaleAt600 = kUsualScaleAt600;
    double scaleOther = kUsualScaleOther;
};

// Returns the source with a limit and a scale applied. White gets no ink, whatever the source says: to the
// driver, paper is the color without ink. No value is the driver's "not computed" mark.
InkSource Treated(InkSource source, double limitPercent, double scalePercent);

// Samples both variants for the profile's version.
void FillVariants(Profile& profile, const InkSource& source, const InkTreatment& treatment);

}  // namespace orvex::tools::profile
