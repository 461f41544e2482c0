#include "tools/common/ink_model.h"

#include <algorithm>
#include <cmath>

namespace orvex::tools {

namespace {

struct SolidInk {
    double density[3];  // in red, green and blue light, over paper
    int absorbs;        // the color of light that it is meant to absorb
    double dotGain;
};

// The typical inks, indexed by Ink.
constexpr SolidInk kSolidInks[kInks] = {
    {{1.50, 1.50, 1.50}, 0, 0.18},
    {{1.35, 0.42, 0.18}, 0, 0.20},
    {{0.16, 1.30, 0.52}, 1, 0.20},
    {{0.02, 0.10, 1.20}, 2, 0.18},
};

constexpr double kDarkestDensity = 1.70;
constexpr size_t kLightSteps = 8192;

double Transmitted(double density) {
    return std::pow(10, -density);
}

float LightThrough(const SolidInk& ink, double share, int color) {
    const double covered = share + 4 * ink.dotGain * share * (1 - share);
    const double main = ink.density[ink.absorbs];
    const double light = 1 - covered * (1 - Transmitted(main));
    return static_cast<float>(std::pow(light, ink.density[color] / main));
}

// Encodes light by sRGB's curve; both are 0 to 1.
double Encoded(double light) {
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

}  // namespace

InkModel::InkModel(uint32_t dpi) : shown_(kLightSteps + 1) {
    const float fullInk = dpi == 600 ? 127.5f : 255.0f;
    for (size_t amount = 0; amount < share_.size(); ++amount) {
        share_[amount] = std::min(static_cast<float>(amount) / fullInk, 1.0f);
        for (int ink = 0; ink < kInks; ++ink) {
            const SolidInk& solid = kSolidInks[ink];
            const double share = share_[amount];
            light_[ink][amount] = {LightThrough(solid, share, 0), LightThrough(solid, share, 1),
                                   LightThrough(solid, share, 2)};
        }
    }
    const double darkest = Transmitted(kDarkestDensity);
    for (size_t step = 0; step <= kLightSteps; ++step) {
        const double light = static_cast<double>(step) / kLightSteps;
        const double shown = std::max((light - darkest) / (1 - darkest), 0.0);
        shown_[step] = static_cast<uint8_t>(255 * Encoded(shown) + 0.5);
    }
}

uint8_t InkModel::Shown(float light) const {
    return shown_[static_cast<size_t>(light * kLightSteps + 0.5f)];
}

Rgb InkModel::OnPaper(uint32_t inkValue) const {
    if (inkValue == 0) return kPaperWhite;
    const Light& k = light_[kBlackInk][InkAmount(inkValue, kBlackInk)];
    const Light& c = light_[kCyanInk][InkAmount(inkValue, kCyanInk)];
    const Light& m = light_[kMagentaInk][InkAmount(inkValue, kMagentaInk)];
    const Light& y = light_[kYellowInk][InkAmount(inkValue, kYellowInk)];
    return {Shown(k.red * c.red * m.red * y.red), Shown(k.green * c.green * m.green * y.green),
            Shown(k.blue * c.blue * m.blue * y.blue)};
}

}  // namespace orvex::tools
