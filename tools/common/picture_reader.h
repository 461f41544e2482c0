// Pictures of any format that are read row by row, as pages.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "tools/common/picture.h"

namespace orvex::tools {

// A point of the CIE 1931 chromaticity diagram.
struct Chromaticity {
    double x;
    double y;
};

struct RgbPrimaries {
    Chromaticity white;
    Chromaticity red;
    Chromaticity green;
    Chromaticity blue;
};

// A file's own statements about its colors; all empty if it makes none.
struct EmbeddedColors {
    bool srgb = false;                  // marked as sRGB, which outranks gamma and primaries
    std::vector<uint8_t> profile = {};  // ICC, which outranks all others
    bool grayFile = false;              // the file's pixels are gray, and so is a profile that fits them
    std::optional<double> gamma = std::nullopt;  // exponent of the encoding, such as 1 / 2.2
    std::optional<RgbPrimaries> primaries = std::nullopt;
};

// Returns the pixel 0x00RRGGBB of 0xAARRGGBB on the white of a label.
inline uint32_t OnLabel(uint32_t argb) {
    constexpr uint32_t kOpaque = 255;
    const uint32_t alpha = argb >> 24;
    if (alpha == kOpaque) return argb & 0xFFFFFF;
    const auto overWhite = [alpha](uint32_t value) {
        return (value * alpha + 255 * (255 - alpha) + 127) / 255;
    };
    return overWhite(argb >> 16 & 0xFF) << 16 | overWhite(argb >> 8 & 0xFF) << 8 | overWhite(argb & 0xFF);
}

class PictureReader {
  public:
    // Converts the colors of `count` pixels 0xAARRGGBB in place.
    using ColorConversion = std::function<void(uint32_t* pixels, size_t count)>;

    virtual ~PictureReader() = default;

    PictureSize Size() const { return size_; }
    virtual EmbeddedColors Colors() const = 0;
    void ConvertColors(ColorConversion conversion) { conversion_ = std::move(conversion); }

    // Reads the next row, Size().width pixels 0x00RRGGBB. Throws PageError.
    virtual void ReadRow(uint32_t* pixels) = 0;
    // Reads all rows; `stride` is the number of pixels from row to row.
    virtual void ReadAll(uint32_t* pixels, size_t stride) {
        for (uint32_t y = 0; y < size_.height; ++y) ReadRow(pixels + y * stride);
    }

  protected:
    PictureSize size_;
    ColorConversion conversion_;  // null: colors stay as they are
};

}  // namespace orvex::tools
