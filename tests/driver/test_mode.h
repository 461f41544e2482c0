// A device mode to start a test from.
#pragma once

#include <string_view>

#include "config/device_mode.h"

// A valid device mode with that profile: portrait, 300 dpi, 30 x 40 mm, centred, no print-head offset.
DeviceMode ValidTestMode(std::string_view profile);
