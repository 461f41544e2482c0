// The way of a device mode from outside into the printer's record: it is converted to the driver's layout,
// merged, and validated, so that every field has a valid value.
#pragma once

#include "driver/config/device_mode.h"
#include "platform/windows.h"

namespace orvex {

// Merges the caller's settings into `destination`, the printer's defaults, and validates the result. `source`
// may have another public layout. If it has room for a profile or a label but names none of the printer's,
// they are written into `source` itself. Returns TRUE without doing anything when `source` is null, and FALSE
// when it can't be converted or the process is out of memory. In both cases `destination` keeps the defaults,
// which are not valid in every field, because only validation supplies some of them.
BOOL MergeDevMode(DeviceMode* destination, DEVMODEW* source, HANDLE printer);

// Copies as much of `in` into `out` as both declare to have; `out` keeps its layout and gets the version that
// belongs to it. Returns the bytes copied, or -1 when either record is null or has no version.
int ConvertDevMode(const DEVMODEW* in, DEVMODEW* out);

// Copies the public fields that `source` flags, and its private part if that has the driver's signature.
void CopyDevmode(DeviceMode* destination, const DeviceMode* source);

// Reconciles the paper fields, then replaces every value that is not valid.
void ValidateDevmode(DeviceMode* record, HANDLE printer);

// Reconciles paper number, size and form name. A number that someone changed to that of a label of the
// printer brings that label's size and name. A standard size becomes a custom one.
void ValidateForm(DeviceMode* record, HANDLE printer);

}  // namespace orvex
