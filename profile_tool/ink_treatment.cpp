#include "profile_tool/ink_treatment.h"

#include <algorithm>
#include <cmath>

#include "profile_tool/ink.h"

uint32_t LimitInk(uint32_t inks, double limitPercent) {
    const uint32_t budget = static_cast<uint32_t>(limitPercent * kFullAmount / 100);
    const uint32_t total = TotalInk(inks);
    if (total <= budget) return inks;
    const uint32_t black = std::min(InkAmount(inks, kBlackInk), budget);
    const uint32_t colored = total - InkAmount(inks, kBlackInk);
    const auto limited = [&](int ink) {
        return colored ? InkAmount(inks, ink) * (budget - black) / colored : 0;
    };
    return PackInks(black, limited(kCyanInk), limited(kMagentaInk), limited(kYellowInk));
}

uint32_t ScaleInk(uint32_t inks, double scalePercent) {
    const auto scaled = [&](int ink) {
        const double amount = InkAmount(inks, ink) * scalePercent / 100;
        return static_cast<uint32_t>(std::min(std::floor(amount + 0.5), kFullAmount));
    };
    return PackInks(scaled(kBlackInk), scaled(kCyanInk), scaled(kMagentaInk), scaled(kYellowInk));
}

void FillVariants(Profile& profile, const InkSource& source, const InkTreatment& treatment) {
    profile.other = SampleVariant(profile.version, source);
    profile.other.back() = 0;
    for (uint32_t& inks : profile.other) inks = LimitInk(inks, treatment.limit);
    profile.at600 = profile.other;
    for (uint32_t& inks : profile.at600) inks = AvoidMark(ScaleInk(inks, treatment.scaleAt600));
    for (uint32_t& inks : profile.other) inks = AvoidMark(ScaleInk(inks, treatment.scaleOther));
}
