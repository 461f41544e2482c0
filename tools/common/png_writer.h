// PNG files that are written row by row.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "tools/common/whole_file.h"

struct spng_ctx;

namespace orvex::tools {

struct PngSettings {
    uint32_t width = 0;   // pixels
    uint32_t height = 0;  // pixels
    double pixelsPerInch = 0;
    bool srgb = false;  // marks the colors as sRGB's
};

// A picture of red, green and blue, 8 bits each. Takes the memory of a few rows. All errors are
// std::runtime_error and name the file; there is none under its name until Complete().
class PngWriter {
  public:
    PngWriter(const std::filesystem::path& path, const PngSettings& settings);
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    // Writes the next row from the top, three samples for each pixel.
    void WriteRow(std::span<const uint8_t> samples);
    // Gives the file its name, after the last row.
    void Complete();

  private:
    struct Closer {
        void operator()(spng_ctx* png) const;
    };

    void Check(int code);

    std::filesystem::path path_;
    OutputFile file_;
    std::unique_ptr<spng_ctx, Closer> png_;
};

}  // namespace orvex::tools
