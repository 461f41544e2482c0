// What a device instance does with device modes: its defaults first, then the caller's settings.
#pragma once

#include "driver/config/device_mode_defaults.h"
#include "driver/config/device_mode_merge.h"
