// A device mode to start a test from.
#pragma once

#include <string_view>

#include "driver/config/device_mode.h"

namespace orvex {

// A valid device mode with that profile: portrait, 300 dpi, 30 x 40 mm, centred, no print-head offset.
DeviceMode ValidTestMode(std::string_view profile);

}  // namespace orvex
