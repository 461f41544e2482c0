// PNG files that are read row by row, as pages.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/picture.h"

struct spng_ctx;

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

// What a file says about its colors; all empty if it does not say anything.
struct EmbeddedColors {
    bool srgb = false;                  // marked as sRGB, which outranks gamma and primaries
    std::vector<uint8_t> profile = {};  // ICC, which outranks all others
    bool grayFile = false;              // the file's pixels are gray, and so is a profile that fits them
    std::optional<double> gamma = std::nullopt;  // exponent of the encoding, such as 1 / 2.2
    std::optional<RgbPrimaries> primaries = std::nullopt;
};

// A PNG of any color type, read from its beginning. Transparent parts show the white of the label. Takes the
// memory of a few rows. An interlaced file whose rows are read one by one is decoded once for each window of
// rows, since any row needs most of the file. All errors are PageError and begin with the name.
class PngReader {
  public:
    // Converts the colors of `count` pixels 0xAARRGGBB in place.
    using ColorConversion = std::function<void(uint32_t* pixels, size_t count)>;

    // Pixels of an interlaced file's window: 64 MiB.
    static constexpr size_t kWindowPixels = size_t{16} << 20;

    // Reads everything before the pixels. Throws for a file that is no sound PNG, or has more pixels than a
    // label can have; the sizes that a file claims are checked before any memory is taken for them. `name`
    // may be empty. Tests make the window small.
    PngReader(std::unique_ptr<std::istream> file, const std::string& name,
              size_t windowPixels = kWindowPixels);

    PictureSize Size() const { return size_; }
    EmbeddedColors Colors() const;
    void ConvertColors(ColorConversion conversion) { conversion_ = std::move(conversion); }

    // Reads the next row, Size().width pixels 0x00RRGGBB. Reading the last row also checks the rest of the
    // file.
    void ReadRow(uint32_t* pixels);
    // Reads all rows; `stride` is the number of pixels from row to row.
    void ReadAll(uint32_t* pixels, size_t stride);

  private:
    struct Closer {
        void operator()(spng_ctx* png) const;
    };

    [[noreturn]] void Fail(const std::string& problem) const;
    void Check(int code) const;
    // Opens the file at its beginning.
    void Begin();
    void ReadHeader();
    void ChooseFormat();
    // Decodes the next row of the file. Returns whether it was the last one.
    bool Decode(void* samples, size_t size);
    // Decodes an interlaced file, and keeps `count` rows from `first` on.
    void DecodePasses(uint32_t first, uint32_t count, uint32_t* pixels, size_t stride);
    // Returns the next row of an interlaced file.
    const uint32_t* NextOfWindow();
    // Turns a row's samples, which are RGBA, into pixels in the same memory.
    void FinishRgba(uint32_t* pixels) const;

    std::unique_ptr<std::istream> file_;
    std::string prefix_;  // of messages
    std::unique_ptr<spng_ctx, Closer> png_;
    PictureSize size_;
    ColorConversion conversion_;
    uint32_t channels_ = 4;  // of the decoded samples: 1, 3 or 4
    bool interlaced_ = false;
    uint32_t nextRow_ = 0;
    std::vector<uint8_t> samples_;  // of a row with 1 or 3 channels
    size_t windowPixels_;
    RasterImage window_;  // the rows of an interlaced file that are read one by one
    uint32_t windowTop_ = 0;
};

}  // namespace orvex::tools
