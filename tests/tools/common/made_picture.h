// Pictures of given samples.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/common/picture.h"

namespace orvex::tools {

using Samples = std::vector<uint8_t>;

// Makes a picture of given samples.
inline Picture MakePicture(uint32_t width, uint32_t height, uint32_t channels, const Samples& samples) {
    Picture picture(width, height, channels);
    picture.samples = samples;
    return picture;
}

}  // namespace orvex::tools
