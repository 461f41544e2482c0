// The model by which a recipe turns colors into inks: the densities of the print.
//
// A color's red, green and blue, taken as light, become the densities that the print should have in the three
// channels. Black ink takes over a growing share of the neutral part; cyan, magenta and yellow make up the
// rest, each corrected for the light that the others absorb beside their own channel. An ink's density
// becomes the area that its dots must cover, and the area becomes the amount to ask for, less the gain of the
// dots.
#pragma once

#include <array>
#include <cstdint>

namespace orvex::tools::profile {

constexpr int kChannels = 3;  // red, green, blue

struct SolidInk {
    std::array<double, kChannels> density = {};  // over paper
    double dotGain = 0;                          // percent that dots of half coverage gain
};

struct SeparationModel {
    std::array<SolidInk, 4> inks;  // K, C, M, Y
    double blackDensity = 0;       // of the darkest neutral of the print, to which black is mapped
    double chromaDensity = 0;      // the most that a pure color adds to the neutral part
    double blackStart = 0;         // the neutral density at which black ink sets in
    double highlightEase = 0;      // percent; amounts of color of about this size and less are reduced
};

// Returns the determinant of the densities of cyan, magenta and yellow: close to 0 if they can't be told
// apart.
double ColorInkDeterminant(const SeparationModel& model);

class Separation {
  public:
    explicit Separation(const SeparationModel& model);

    // Returns the ink value of a color before any limit or scale.
    uint32_t Inks(uint32_t color) const;

    // Returns the densities in the three channels that the print of an ink value has by this model.
    std::array<double, kChannels> PrintedDensity(uint32_t inks) const;

    // Returns the density that the print of a neutral with this component, 0 to 255, should have.
    double WantedDensity(uint32_t component) const { return wantedDensity_[component]; }

  private:
    double BlackShare(double neutral) const;
    double CompressedChroma(double density) const;
    // Convert the part of its solid density that an ink should print, 0 to 1, to the amount to ask for, 0 to
    // 1, and back.
    double AmountFor(int ink, double fraction) const;
    double FractionOf(int ink, double amount) const;
    double Ease(double amount) const;

    SeparationModel model_;
    std::array<double, 256> wantedDensity_;
    // Turns densities by channel into fractions of C, M and Y.
    std::array<std::array<double, kChannels>, kChannels> masking_;
};

}  // namespace orvex::tools::profile
