// Forcing every field of a device mode into its valid range.
#pragma once

#include "driver/config/device_mode.h"
#include "platform/windows.h"

namespace orvex {

// Reconciles the paper fields, then replaces every value out of its range.
void ValidateDevmode(DeviceMode* record, HANDLE printer);

// Reconciles paper number, size and form name. A number that someone changed to one of the printer's labels
// brings that label's size and name; standard sizes become a custom one.
void ValidateForm(DeviceMode* record, HANDLE printer);

}  // namespace orvex
