// Validation of a device mode: every field gets a valid value.
#pragma once

#include "driver/config/device_mode.h"
#include "platform/windows.h"

namespace orvex {

// Reconciles the paper fields, then replaces every value that is not valid.
void ValidateDevmode(DeviceMode* record, HANDLE printer);

// Reconciles paper number, size and form name. A number that someone changed to that of a label of the
// printer brings that label's size and name. A standard size becomes a custom one.
void ValidateForm(DeviceMode* record, HANDLE printer);

}  // namespace orvex
