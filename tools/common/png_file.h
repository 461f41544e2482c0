// PNG files: reading them as pages, writing pictures.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "tools/common/picture.h"
#include "tools/common/png_reader.h"

namespace orvex::tools {

// Decodes a PNG as PngReader does. Throws PageError.
RasterImage DecodePng(std::span<const uint8_t> file);

// Opens a PNG file to be read row by row. Throws PageError, or std::runtime_error if the file can't be
// opened; messages begin with its name.
PngReader OpenPng(const std::filesystem::path& path);

// Decodes a PNG file. Throws like OpenPng.
RasterImage LoadPng(const std::filesystem::path& path);

// Encodes a picture as a PNG file that states its resolution. Throws std::runtime_error.
std::vector<uint8_t> EncodePng(const Picture& picture, double pixelsPerInch);

// Writes a picture as a PNG file. Throws std::runtime_error, and then leaves no file.
void SavePng(const Picture& picture, double pixelsPerInch, const std::filesystem::path& path);

}  // namespace orvex::tools
