// PNG files as pictures of pages.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

#include "tools/common/raster_image.h"

namespace orvex::tools {

// Decodes a PNG of any colour type; what is transparent shows the white of the label. The density comes from
// the file's pHYs chunk when that gives one in pixels per metre. Throws PageError for whatever is no sound
// PNG, or is larger than any label at 600 dpi; the claimed sizes of a file are checked before memory is taken
// for them.
RasterImage DecodePng(std::span<const uint8_t> file);

// The same from a file; messages begin with its name.
RasterImage LoadPng(const std::filesystem::path& path);

}  // namespace orvex::tools
