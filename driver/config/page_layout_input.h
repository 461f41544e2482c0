// Input of the page layout, taken from a job's settings.
#pragma once

#include "driver/config/device_mode.h"
#include "driver/render/page_layout.h"

namespace orvex {

// Returns the input for a page bitmap of `width` x `height` pixels.
PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height);

}  // namespace orvex
