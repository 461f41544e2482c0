// Pictures and base64 text, decoded by other code than the driver's own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgba;  // width x height x 4 bytes; empty if the picture could not be decoded
};

Picture DecodePicture(std::string_view png);

// Returns the bytes of base64 text; empty if it is not well-formed.
std::string DecodeBase64(std::string_view text);

}  // namespace orvex
