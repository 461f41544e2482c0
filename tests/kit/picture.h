// Pictures decoded by another decoder than the one that the driver encodes with.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgba;  // width x height x 4 bytes; empty when the picture could not be decoded
};

Picture DecodePicture(std::string_view png);

// The bytes of base64 text; empty when it is not well-formed.
std::string DecodeBase64(std::string_view text);

}  // namespace orvex
