// From ink values to the colours of a preview: a model of the print by densities.
//
// Dots grow on the paper: of an amount a, from 0 to 1, they cover a + 4g a(1 - a), g being the gain at one
// half. What is covered sends back as much light as the solid ink, the rest as much as white paper. An ink
// absorbs most of one colour of the light, black of all three, and some of the others beside it, always in
// the same proportion of densities; inks on each other add their densities. The darkest print that there is
// shows as black, and the light as sRGB.
//
// A full amount is 255; at 600 dpi, where a label takes four times as many dots, half of it is full ink. The
// inks of the model are typical ones: a preview shows what a print looks like, not how a given paper takes
// it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "driver/color/ink.h"

namespace orvex::tools::view {

struct Rgb {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;

    bool operator==(const Rgb&) const = default;
};

inline constexpr Rgb kPaperWhite = {255, 255, 255};

class InkModel {
  public:
    explicit InkModel(uint32_t dpi);

    // An amount as a part of full ink, 0 to 1.
    float Share(uint32_t amount) const { return share_[amount]; }

    // The colour of an ink value on white paper.
    Rgb OnPaper(uint32_t inkValue) const;
    // The amount of one ink: 255 for none, 0 for full ink.
    uint8_t Gray(uint32_t inkValue, int ink) const {
        return static_cast<uint8_t>(255 * (1 - Share(InkAmount(inkValue, ink))) + 0.5f);
    }

  private:
    // The part of red, green and blue light that comes through.
    struct Light {
        float red, green, blue;
    };

    uint8_t Shown(float light) const;

    std::array<float, 256> share_;
    std::array<std::array<Light, 256>, kInks> light_;
    std::vector<uint8_t> shown_;  // by light, in equal steps
};

}  // namespace orvex::tools::view
