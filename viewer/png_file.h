// Writing pictures and other files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "viewer/picture.h"

namespace viewer {

// The picture as a PNG file that states its resolution, in pixels per inch. Throws std::runtime_error.
std::vector<uint8_t> EncodePng(const Picture& picture, double pixelsPerInch);

// Writes a whole file. When that fails no file is left and std::runtime_error names it.
void WriteWholeFile(const std::filesystem::path& path, std::span<const uint8_t> bytes);

}  // namespace viewer
