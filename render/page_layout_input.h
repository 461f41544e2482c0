// The page layout's inputs out of a job's settings.
#pragma once

#include "config/device_mode.h"
#include "render/page_layout.h"

// For a page bitmap of `width` x `height` pixels, printed at `dpi` dots per inch.
PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height);
