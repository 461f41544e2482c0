// PNG files that are read row by row, as pages.
#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <vector>

#include "tools/common/picture_reader.h"

struct spng_ctx;

namespace orvex::tools {

// A PNG of any color type, read from its beginning. Transparent parts show the white of the label. Takes the
// memory of a few rows. An interlaced file whose rows are read one by one is decoded once for each window of
// rows, since any row needs most of the file. All errors are PageError and begin with the name.
class PngReader : public PictureReader {
  public:
    // Pixels of an interlaced file's window: 64 MiB.
    static constexpr size_t kWindowPixels = size_t{16} << 20;

    // Reads everything before the pixels. Throws for a file that is no sound PNG, or has more pixels than a
    // label can have; the sizes that a file claims are checked before any memory is taken for them. `name`
    // may be empty. Tests make the window small. `noPng` says that a file is no PNG.
    PngReader(std::unique_ptr<std::istream> file, const std::string& name,
              size_t windowPixels = kWindowPixels, const char* noPng = "is no PNG file");

    EmbeddedColors Colors() const override;

    // Reading the last row also checks the rest of the file.
    void ReadRow(uint32_t* pixels) override;
    void ReadAll(uint32_t* pixels, size_t stride) override;

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
    const char* noPng_;
    std::unique_ptr<spng_ctx, Closer> png_;
    uint32_t channels_ = 4;  // of the decoded samples: 1, 3 or 4
    bool interlaced_ = false;
    uint32_t nextRow_ = 0;
    std::vector<uint8_t> samples_;  // of a row with 1 or 3 channels
    size_t windowPixels_;
    RasterImage window_;  // the rows of an interlaced file that are read one by one
    uint32_t windowTop_ = 0;
};

}  // namespace orvex::tools
