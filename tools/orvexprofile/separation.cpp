#include "tools/orvexprofile/separation.h"

#include <algorithm>
#include <cmath>

#include "tools/orvexprofile/ink_treatment.h"

namespace orvex::tools::profile {

namespace {

// Returns an sRGB component as light, 0 to 1.
double Light(uint32_t component) {
    const double value = component / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// Returns the channel that an ink is meant to absorb: red for cyan, green for magenta, blue for yellow, and
// any for black.
int MainChannel(int ink) {
    return ink == kBlackInk ? 0 : ink - kCyanInk;
}

// Returns a mean that is close to the least of the densities, yet has no kink where they are equal: the
// driver interpolates grays from corners beside the gray axis, and a kink there would show as waves in every
// gray ramp.
double NeutralDensity(const std::array<double, kChannels>& densities) {
    double sum = 0;
    for (double density : densities) {
        if (density <= 0) return 0;
        sum += std::pow(density, -3);
    }
    return std::pow(sum / kChannels, -1.0 / 3);
}

using Matrix = std::array<std::array<double, kChannels>, kChannels>;

// Returns the densities of cyan, magenta and yellow by channel.
Matrix InkDensities(const SeparationModel& model) {
    Matrix densities;
    for (int channel = 0; channel < kChannels; ++channel) {
        for (int ink = kCyanInk; ink <= kYellowInk; ++ink) {
            densities[channel][ink - kCyanInk] = model.inks[ink].density[channel];
        }
    }
    return densities;
}

double Cofactor(const Matrix& m, int row, int column) {
    const int r1 = (row + 1) % 3, r2 = (row + 2) % 3, c1 = (column + 1) % 3, c2 = (column + 2) % 3;
    return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
}

double Determinant(const Matrix& m) {
    return m[0][0] * Cofactor(m, 0, 0) + m[0][1] * Cofactor(m, 0, 1) + m[0][2] * Cofactor(m, 0, 2);
}

// Inverts a matrix by cofactors. It is not singular, since a recipe whose inks can't be told apart is
// refused.
Matrix Inverse(const Matrix& m) {
    Matrix inverse;
    for (int row = 0; row < kChannels; ++row) {
        for (int column = 0; column < kChannels; ++column)
            inverse[row][column] = Cofactor(m, column, row) / Determinant(m);
    }
    return inverse;
}

}  // namespace

double ColorInkDeterminant(const SeparationModel& model) {
    return Determinant(InkDensities(model));
}

Separation::Separation(const SeparationModel& model) : model_(model), masking_(Inverse(InkDensities(model))) {
    const double black = std::pow(10, -model.blackDensity);
    for (uint32_t component = 0; component < wantedDensity_.size(); ++component) {
        wantedDensity_[component] = -std::log10(black + (1 - black) * Light(component));
    }
}

// Returns the density that black ink adds to a neutral: none up to the start, then softly growing to its
// solid density at the darkest.
double Separation::BlackShare(double neutral) const {
    const double position = (neutral - model_.blackStart) / (model_.blackDensity - model_.blackStart);
    const double within = std::clamp(position, 0.0, 1.0);
    return model_.inks[kBlackInk].density[0] * within * within;
}

double Separation::CompressedChroma(double density) const {
    const double bend = (model_.blackDensity / model_.chromaDensity - 1) / model_.blackDensity;
    return density / (1 + bend * density);
}

// Dots of the amount a cover a + 4ga(1 - a), where g is the gain at one half. The density fraction of a
// coverage follows from the light that paper and solid ink reflect.
double Separation::AmountFor(int ink, double fraction) const {
    const double solid = model_.inks[ink].density[MainChannel(ink)];
    const double covered = (1 - std::pow(10, -fraction * solid)) / (1 - std::pow(10, -solid));
    const double gain = 4 * model_.inks[ink].dotGain / 100;
    if (gain == 0) return covered;
    return (1 + gain - std::sqrt((1 + gain) * (1 + gain) - 4 * gain * covered)) / (2 * gain);
}

double Separation::FractionOf(int ink, double amount) const {
    const double solid = model_.inks[ink].density[MainChannel(ink)];
    const double gain = 4 * model_.inks[ink].dotGain / 100;
    const double covered = amount + gain * amount * (1 - amount);
    return -std::log10(1 - covered * (1 - std::pow(10, -solid))) / solid;
}

// Reduces small amounts of color, so that nearly white paper stays free of stray dots; amounts from a few
// times the ease up stay as they are.
double Separation::Ease(double amount) const {
    const double ease = model_.highlightEase / 100;
    return ease > 0 ? amount * (1 - std::exp(-amount / ease)) : amount;
}

uint32_t Separation::Inks(uint32_t color) const {
    std::array<double, kChannels> wanted = {WantedDensity(color >> 16 & 0xFF),
                                            WantedDensity(color >> 8 & 0xFF), WantedDensity(color & 0xFF)};
    const double neutral = *std::min_element(wanted.begin(), wanted.end());
    const double black = std::min(BlackShare(NeutralDensity(wanted)), neutral);
    for (double& density : wanted) density = neutral - black + CompressedChroma(density - neutral);

    std::array<double, kInks> fractions = {black / model_.inks[kBlackInk].density[0]};
    for (int ink = kCyanInk; ink <= kYellowInk; ++ink) {
        for (int channel = 0; channel < kChannels; ++channel) {
            fractions[ink] += masking_[ink - kCyanInk][channel] * wanted[channel];
        }
    }
    std::array<uint32_t, kInks> amounts;
    for (int ink = 0; ink < kInks; ++ink) {
        const double full = AmountFor(ink, std::clamp(fractions[ink], 0.0, 1.0));
        const double amount = ink == kBlackInk ? full : Ease(full);  // black has its own soft start
        amounts[ink] = static_cast<uint32_t>(std::min(amount, 1.0) * kFullAmount + 0.5);
    }
    return PackInks(amounts[0], amounts[1], amounts[2], amounts[3]);
}

std::array<double, kChannels> Separation::PrintedDensity(uint32_t inks) const {
    std::array<double, kChannels> printed = {};
    for (int ink = 0; ink < kInks; ++ink) {
        const double fraction = FractionOf(ink, InkAmount(inks, ink) / kFullAmount);
        for (int channel = 0; channel < kChannels; ++channel) {
            printed[channel] += fraction * model_.inks[ink].density[channel];
        }
    }
    return printed;
}

}  // namespace orvex::tools::profile
