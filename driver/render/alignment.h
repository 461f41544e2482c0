// The device mode's alignment.
#pragma once

#include <cstdint>

namespace orvex {

// Where a page lies across the print head. Any other value centers it.
enum Alignment : int16_t {
    kAlignRight = 0,  // at the far end
    kAlignCenter = 1,
    kAlignLeft = 2,  // at the near end
};

}  // namespace orvex
