// PNG files: reading them as pages, writing pictures.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "tools/common/picture.h"

namespace orvex::tools {

// Decodes a PNG of any color type; transparent parts show the white of the label. The density comes from the
// file's pHYs chunk if that gives one in pixels per meter. Throws PageError for a file that is not a sound
// PNG, or is larger than any label at 600 dpi. The sizes that a file claims are checked before any memory is
// taken for them.
RasterImage DecodePng(std::span<const uint8_t> file);

// Decodes a PNG file. Throws PageError, or std::runtime_error if the file can't be read; messages begin with
// its name.
RasterImage LoadPng(const std::filesystem::path& path);

// Encodes a picture as a PNG file that states its resolution. Throws std::runtime_error.
std::vector<uint8_t> EncodePng(const Picture& picture, double pixelsPerInch);

// Writes a picture as a PNG file. Throws std::runtime_error, and then leaves no file.
void SavePng(const Picture& picture, double pixelsPerInch, const std::filesystem::path& path);

}  // namespace orvex::tools
