// JPEG, BMP and GIF pictures, which are decoded in memory.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/common/picture_reader.h"
#include "tools/common/picture_tags.h"

namespace orvex::tools {

// A decoded picture, the first one of a GIF with several. Transparent parts show the white of the label. All
// errors are PageError and begin with the name.
class DecodedPicture : public PictureReader {
  public:
    // Pixels of a picture at most: a third of the largest label at 600 dpi, and twice an A4 page. A
    // progressive JPEG takes 12 bytes of memory for each.
    static constexpr uint64_t kMostPixels = 64'000'000;
    // Bytes of a file at most.
    static constexpr size_t kMostBytes = size_t{512} << 20;

    // Reads what is before the pixels, and checks the size that the file claims before memory is taken for
    // it. Throws for a file of another kind, too. Tests lower the limit of pixels.
    DecodedPicture(std::vector<uint8_t> file, std::string name, uint64_t mostPixels = kMostPixels);

    EmbeddedColors Colors() const override;
    void ReadRow(uint32_t* pixels) override;

  private:
    [[noreturn]] void Fail(const std::string& problem) const;
    void CheckKind() const;
    void ReadHeader(uint64_t mostPixels);
    void Orient(uint32_t width, uint32_t height);
    void Decode();

    std::vector<uint8_t> file_;  // empty after the decoding
    std::string name_;
    PictureKind kind_;
    PictureTags tags_;
    size_t channels_ = 0;  // of a decoded pixel: 3, or 4 with alpha
    bool gray_ = false;
    std::unique_ptr<uint8_t, void (*)(void*)> samples_;
    // The pixel of the next row's left end, and the steps to the pixel on its right and to the one below.
    int64_t rowStart_ = 0;
    int64_t across_ = 1;
    int64_t down_ = 0;
};

}  // namespace orvex::tools
