// Conversion of rows of pixels to rows of ink values.
#pragma once

#include <cstdint>

// Converts `count` pixels of `source` through the colour cache into `destination`. With `kws` non-zero, pixels without
// ink get the blank-pixel pattern, the light one when `lightPattern` is non-zero. `greyMode` is the device mode's
// colorMode. `reserved` is not used. Always 0.
int32_t ConvertRow(uint32_t* destination, const uint32_t* source, uint32_t count, uint32_t reserved, int32_t kws,
                   uint32_t lightPattern, uint32_t greyMode);
