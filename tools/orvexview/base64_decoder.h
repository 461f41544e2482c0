// A decoder for base64.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orvex::tools::view {

// Decodes base64 text: the standard alphabet, with padding, without line breaks. Throws std::runtime_error
// that names the wrong character and its position.
std::vector<uint8_t> DecodeBase64(std::string_view text);

// Returns how many characters at the beginning are base64 digits.
size_t CountBase64Digits(std::string_view text);

}  // namespace orvex::tools::view
