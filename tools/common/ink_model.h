// The colors of a preview: a model of the print by densities.
//
// Dots grow on the paper: an amount a, from 0 to 1, covers a + 4g a(1 - a) of it, where g is the gain at one
// half. The covered part reflects as much light as the solid ink, the rest as much as white paper. An ink
// absorbs one color of the light most (black: all three) and the others in a fixed proportion of densities.
// Inks on top of each other add their densities. The darkest possible print is shown as black, and light is
// encoded as sRGB.
//
// Full ink is 255; at 600 dpi, where a label takes four times as many dots, it is half of that. The inks of
// the model are typical ones: a preview shows what a print looks like, not how a given paper takes it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "driver/color/ink.h"

namespace orvex::tools {

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

    // Returns an amount as a fraction of full ink, 0 to 1.
    float Share(uint32_t amount) const { return share_[amount]; }

    // Returns the color of an ink value on white paper.
    Rgb OnPaper(uint32_t inkValue) const;
    // Returns the amount of one ink as a gray: 255 for none, 0 for full ink.
    uint8_t Gray(uint32_t inkValue, int ink) const {
        return static_cast<uint8_t>(255 * (1 - Share(InkAmount(inkValue, ink))) + 0.5f);
    }

    // The fractions of red, green and blue light that an ink reflects.
    struct Light {
        float red, green, blue;
    };
    const Light& LightOf(int ink, uint32_t amount) const { return light_[ink][amount]; }
    // Returns the sample that shows each light from 0 to 1, in equal steps.
    const std::vector<uint8_t>& SamplesByLight() const { return shown_; }

  private:
    uint8_t Shown(float light) const;

    std::array<float, 256> share_;
    std::array<std::array<Light, 256>, kInks> light_;
    std::vector<uint8_t> shown_;  // sample by light, in equal steps
};

}  // namespace orvex::tools
