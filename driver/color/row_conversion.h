// Conversion of rows of pixels to rows of ink values.
#pragma once

#include <cstdint>

#include "driver/color/color_mode.h"

namespace orvex {

// Converts `count` pixels of `source` through the colour cache into `destination`, which may be the same
// buffer. With `kws` non-zero, pixels without ink get the blank-pixel pattern, which starts anew with each
// call: the light one when `lightPattern` is non-zero, else the heavy one. `greyMode` is a GreyMode.
// `reserved` is not used. Always 0.
int32_t ConvertRow(uint32_t* destination, const uint32_t* source, uint32_t count, uint32_t reserved,
                   int32_t kws, uint32_t lightPattern, uint32_t grayMode);

// Writes the blank-pixel pattern over `count` pixels, from its first position on: the light one when
// `lightPattern` is non-zero, else the heavy one.
void FillBlankPattern(uint32_t* destination, uint32_t count, uint32_t lightPattern);

}  // namespace orvex
