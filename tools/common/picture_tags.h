// The facts that picture files have beside their pixels: their kind, resolution, orientation and color
// profile.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tools/common/picture.h"

namespace orvex::tools {

enum class PictureKind { kOther, kJpeg, kBmp, kGif, kTiff, kWebp };

// Returns the kind of a file by its first bytes, of which 12 are enough.
PictureKind KindOfPicture(std::span<const uint8_t> start);

struct PictureTags {
    std::optional<PixelDensity> density = std::nullopt;  // along the stored rows and columns
    // The orientation of EXIF, 1 to 8: the corner and direction in which the stored rows begin.
    int orientation = 1;
    std::vector<uint8_t> profile = {};  // ICC
    bool isCmyk = false;
};

// Reads the tags of a JPEG, BMP or GIF file. Throws PageError, which follows the file's name, for what the
// decoder would take for sound or can't cope with: a file that ends before its picture does, and a JPEG with
// a table of too many codes.
PictureTags ReadPictureTags(PictureKind kind, std::span<const uint8_t> file);

}  // namespace orvex::tools
