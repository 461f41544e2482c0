// How a recipe turns colours into inks: a model of the print by densities.
//
// A colour's red, green and blue, taken as light, become the densities that the print should have in the
// three channels. Black ink takes over a growing share of the neutral part; cyan, magenta and yellow make up
// the rest, each corrected for what the others absorb beside their own channel. An ink's density becomes the
// area that its dots must cover, and that the amount to ask for, less the gain of the dots.
#pragma once

#include <array>
#include <cstdint>

namespace orvex::tools::profile {

constexpr int kChannels = 3;  // red, green, blue

struct InkModel {
    // Of the solid ink, by channel, over paper.
    std::array<double, kChannels> density = {};
    // Percent that dots of half coverage gain.
    double dotGain = 0;
};

struct SeparationModel {
    std::array<InkModel, 4> inks;  // K, C, M, Y
    double blackDensity = 0;       // of the darkest neutral of the print, to which black is mapped
    double chromaDensity =
        0;                  // the most that a pure colour adds to the neutral part; more is compressed softly
    double blackStart = 0;  // the neutral density at which black ink sets in
    double highlightEase = 0;  // percent: amounts of colour about this size and less are held back
};

class Separation {
  public:
    explicit Separation(const SeparationModel& model);

    // The ink value of a colour before any limit or scale.
    uint32_t Inks(uint32_t color) const;

    // The densities in the three channels that the print of an ink value has by this model.
    std::array<double, kChannels> PrintedDensity(uint32_t inks) const;

    // The density that the print of a neutral with this component, 0 to 255, should have.
    double WantedDensity(uint32_t component) const { return wantedDensity_[component]; }

  private:
    double BlackShare(double neutral) const;
    double CompressedChroma(double density) const;
    // The amount to ask for, 0 to 1, for an ink to print as the part `fraction` of its solid density, and
    // back.
    double AmountFor(int ink, double fraction) const;
    double FractionOf(int ink, double amount) const;
    double Ease(double amount) const;

    SeparationModel model_;
    std::array<double, 256> wantedDensity_;
    std::array<std::array<double, kChannels>, kChannels>
        masking_;  // densities by channel to fractions of C, M, Y
};

}  // namespace orvex::tools::profile
