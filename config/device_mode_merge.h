// Bringing a device mode from outside into the driver's layout and its settings into the printer's own
// record.
#pragma once

#include "config/device_mode.h"
#include "support/platform.h"

// Takes the caller's settings over into `destination`, the printer's valid defaults, and validates the
// result. `source` may be null (TRUE, nothing is done) or of another public layout. Where `source` has room
// for a profile or a label but names none of the printer's, they are written into `source` itself. FALSE,
// when memory is short or the source can't be read, leaves `destination` unchanged.
BOOL MergeDevMode(DeviceMode* destination, DEVMODEW* source, HANDLE printer);

// Copies as much of `in` into `out` as both declare to have; `out` keeps its layout and takes the public
// version that belongs to it. Returns the bytes copied, public and private, or -1 when either is null or of
// no version.
int ConvertDevMode(const DEVMODEW* in, DEVMODEW* out);

// Copies the public fields that `source` flags in its dmFields, and its private part when that carries the
// driver's signature.
void CopyDevmode(DeviceMode* destination, const DeviceMode* source);
