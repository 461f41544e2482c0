// What makes a device mode valid, field by field: what a record must be once a caller's was merged into it.
#pragma once

#include "driver/config/device_mode.h"

namespace orvex::fuzz {

// The first field of the record that is out of its range, in words; null for a valid record.
const char* BrokenRule(const DeviceMode& record);

// Gives every field whose range does not depend on another one, and that is out of it, the value that stands
// in, and the vertical resolution the horizontal one.
void ForceIntoRange(DeviceMode& record);

// A printer's valid defaults: the custom size, no label of the list, no profile.
DeviceMode DefaultDeviceMode();

}  // namespace orvex::fuzz
