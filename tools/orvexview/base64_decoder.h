// Base64, the reading side.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace orvex::tools::view {

// Decodes base64 text: the standard alphabet, padding, no line breaks. Throws std::runtime_error that names
// the position and what stands there.
std::vector<uint8_t> DecodeBase64(std::string_view text);

}  // namespace orvex::tools::view
