// Writing pictures and other files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "tools/orvexview/picture.h"

namespace orvex::tools::view {

// The picture as a PNG file that states its resolution, in pixels per inch. Throws std::runtime_error.
std::vector<uint8_t> EncodePng(const Picture& picture, double pixelsPerInch);

// Writes a whole file; under its name it only appears when it is complete. Throws std::runtime_error that
// names it.
void WriteWholeFile(const std::filesystem::path& path, std::span<const uint8_t> bytes);

}  // namespace orvex::tools::view
