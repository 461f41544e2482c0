// The device mode's colorMode.
#pragma once

#include <cstdint>

namespace orvex {

// What a job prints with. Any other value prints in color.
enum ColorMode : int32_t {
    kColorModeColor = 0,
    kColorModeCompositeGray = 1,  // grays made of C, M and Y, without black ink
    kColorModeBlackGray = 2,      // grays made of K alone
};

}  // namespace orvex
