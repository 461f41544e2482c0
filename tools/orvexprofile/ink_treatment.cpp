#include "tools/orvexprofile/ink_treatment.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvex::tools::profile {

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

InkSource Treated(InkSource source, double limitPercent, double scalePercent) {
    return [source = std::move(source), limitPercent, scalePercent](std::span<const uint32_t> colors,
                                                                    std::span<uint32_t> inks) {
        source(colors, inks);
        for (size_t i = 0; i < colors.size(); ++i) {
            const uint32_t treated = AvoidMark(ScaleInk(LimitInk(inks[i], limitPercent), scalePercent));
            inks[i] = colors[i] == kWhite ? 0 : treated;
        }
    };
}

void FillVariants(Profile& profile, const InkSource& source, const InkTreatment& treatment) {
    profile.at600 = SampleVariant(profile.version, Treated(source, treatment.limit, treatment.scaleAt600));
    profile.other = SampleVariant(profile.version, Treated(source, treatment.limit, treatment.scaleOther));
}

}  // namespace orvex::tools::profile
