// Plain definition of the facts that a page's layout depends on: the settings of the device mode and the size
// of the bitmap.
#pragma once

#include <cstdint>

#include "driver/config/device_mode.h"
#include "driver/render/page_layout.h"

namespace orvex::plain {

// Returns the device resolution in dots per inch: 600 and 300 are taken as they are, and any other print
// quality counts as 300.
int16_t Resolution(const DeviceMode& mode);

// Returns the facts for a bitmap of `width` x `height` pixels. Purge dots and gap are unsigned; the purge
// bar, the alignment and the print-head offset are signed.
PageLayoutInput LayoutInput(const DeviceMode& mode, int32_t width, int32_t height);

}  // namespace orvex::plain
