// From ink values to the colours of a preview.
//
// Each ink is an ideal filter: cyan takes red away, magenta green, yellow blue, black all three, each in
// proportion to its amount, and white paper reflects everything:
//
//     red = paper red x (1 - c) x (1 - k)     green = ... (1 - m) x (1 - k)     blue = ... (1 - y) x (1 - k)
//
// with c, m, y and k the amounts from 0 to 1. A full amount is 255; at 600 dpi, where a label takes four
// times as many dots, half of it is full ink. Real inks are not ideal: a preview shows what is meant, not how
// a given paper takes it.
#pragma once

#include <array>
#include <cstdint>

namespace viewer {

struct Rgb {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;

    bool operator==(const Rgb&) const = default;
};

inline constexpr Rgb kPaperWhite = {255, 255, 255};

// The inks in the order of their bytes in an ink value, the lowest first.
enum Ink { kBlack = 0, kCyan = 1, kMagenta = 2, kYellow = 3 };
inline constexpr int kInkCount = 4;
inline constexpr char kInkLetters[kInkCount + 1] = "KCMY";

constexpr uint8_t InkAmount(uint32_t inkValue, int ink) {
    return static_cast<uint8_t>(inkValue >> (8 * ink));
}

class InkModel {
  public:
    explicit InkModel(uint32_t dpi);

    // The part of the light that an ink of that amount lets through, 0 to 1.
    float Transmission(uint8_t amount) const { return transmission_[amount]; }

    Rgb OnPaper(uint32_t inkValue, Rgb paper = kPaperWhite) const;
    // One ink alone: 255 without it, 0 for full ink.
    uint8_t Grey(uint32_t inkValue, int ink) const {
        return Level(255, Transmission(InkAmount(inkValue, ink)));
    }

  private:
    static uint8_t Level(uint8_t light, float part) {
        return static_cast<uint8_t>(static_cast<float>(light) * part + 0.5f);
    }

    std::array<float, 256> transmission_;
};

}  // namespace viewer
