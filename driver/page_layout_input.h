// The page layout's inputs out of a job's settings.
#pragma once

#include "driver/config/device_mode.h"
#include "driver/render/page_layout.h"

namespace orvex {

// For a page bitmap of `width` x `height` pixels, printed at `dpi` dots per inch.
PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height);

}  // namespace orvex
