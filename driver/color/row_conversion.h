// Conversion of rows of pixels to rows of ink values.
#pragma once

#include <cstdint>

#include "driver/color/ink.h"

namespace orvex {

// A job's use of inks. Any other value prints in color.
enum ColorMode : int32_t {
    kColorModeColor = 0,
    kColorModeCompositeGray = 1,  // grays made of C, M and Y, without black ink
    kColorModeBlackGray = 2,      // grays made of K alone
};

// Converts `count` pixels of `source` through the color cache into `destination`, which may be the same
// buffer. With `kws`, pixels without ink get the blank-pixel pattern, which starts anew with each call: the
// light one if `lightPattern` is set, else the heavy one. `reserved` is not used. Returns 0.
int32_t ConvertRow(InkValue* destination, const uint32_t* source, uint32_t count, uint32_t reserved,
                   int32_t kws, uint32_t lightPattern, uint32_t colorMode);

// Writes the blank-pixel pattern over `count` pixels, starting with its first ink.
void FillBlankPattern(InkValue* destination, uint32_t count, uint32_t lightPattern);

}  // namespace orvex
