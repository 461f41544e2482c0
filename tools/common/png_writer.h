// PNG files that are written row by row, so that a picture of any size takes little memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "tools/common/picture.h"
#include "tools/common/whole_file.h"

struct spng_ctx;

namespace orvex::tools {

struct PngSettings {
    uint32_t width = 0;     // pixels
    uint32_t height = 0;    // pixels
    uint32_t channels = 3;  // 3 = red, green, blue; 1 = gray
    double pixelsPerInch = 0;
    bool srgb = false;               // marks the colors as sRGB's
    std::string_view software = {};  // the program that the file names as its maker; empty: none
};

// Returns whether a file is a PNG that names this program as its maker.
bool IsPngMadeBy(std::string_view software, const std::filesystem::path& path);

// A picture of 8 bits a sample. All errors are std::runtime_error and name the file; there is none under its
// name until Complete().
class PngWriter {
  public:
    PngWriter(const std::filesystem::path& path, const PngSettings& settings);
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;
    ~PngWriter() = default;

    // Writes the next row from the top, a sample for each channel of each pixel.
    void WriteRow(std::span<const uint8_t> samples);
    // Writes all rows of a picture that is as wide.
    void WriteRows(const Picture& rows);
    // Gives the file its name, after the last row.
    void Complete();

  private:
    struct Closer {
        void operator()(spng_ctx* png) const;
    };

    void Describe(const PngSettings& settings);
    void Check(int code);

    std::filesystem::path path_;
    OutputFile file_;
    std::unique_ptr<spng_ctx, Closer> png_;
    size_t channels_;
    std::vector<uint8_t> above_;  // the row before
};

}  // namespace orvex::tools
