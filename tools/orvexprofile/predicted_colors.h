// The colors that a printer's ICC profile predicts for printed inks, through Little CMS, and the difference
// between two such lists.
//
// The profile's full ink is the driver's amount of 255, and half of that at 600 dpi, where four dots take the
// place of one; the same amounts as in previews.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// CIE L*a*b* for the D50 of ICC profiles.
struct LabColor {
    double lightness = 0;  // 0 to 100
    double a = 0;
    double b = 0;
};

// Print colors are shown with paper as the screen's white, or with the paper's own color.
enum class PaperColor { kScreenWhite, kOwn };

// The colorimetric prediction for inks. Each color is computed on its own, without a table in between.
class PredictedColors {
  public:
    // Throws std::runtime_error, in words, as IccProfile does, and when the profile can't tell colors.
    PredictedColors(const std::filesystem::path& path, PrintVariant variant, PaperColor paper);
    ~PredictedColors();
    PredictedColors(const PredictedColors&) = delete;
    PredictedColors& operator=(const PredictedColors&) = delete;

    // Returns a color for each ink value.
    std::vector<LabColor> Lab(std::span<const InkValue> inks) const;
    // Computes sRGB samples: red, green and blue for each ink value.
    void Srgb(std::span<const InkValue> inks, std::span<uint8_t> samples) const;

    // Returns whether any amount is more than the profile's full ink, and so predicted as full.
    bool IsBeyondFull(InkValue inks) const;

  private:
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

// Returns the difference of two colors by CIEDE2000.
double DifferenceOf(const LabColor& a, const LabColor& b);

struct ColorDifference {
    double mean = 0;
    double most95 = 0;  // the largest of 95 percent of the colors
    double largest = 0;
    size_t largestAt = 0;  // the place of that color in the lists
};

// Compares two lists of the same length, which are not empty.
ColorDifference CompareColors(std::span<const LabColor> expected, std::span<const LabColor> found);

}  // namespace orvex::tools::profile
