// Building, merging, copying and validating device modes.
//
// A record handed in from outside ends at its own dmSize + dmDriverExtra: fields beyond that read as zero or empty and
// are never written.
#pragma once

#include "config/device_mode.h"
#include "support/platform.h"

// Builds the printer's default record from the installation: zeroed, then the defaults, the default label and the
// default colour profile. Imports media.inf when the printer has no labels yet. Rereads the log mask first. Always TRUE.
BOOL SetupDefaultDevMode(DeviceMode* record, const WCHAR* printerName, HANDLE printer);

// Takes the caller's settings over into `destination`, the printer's valid defaults, and validates the result.
// `source` may be null (TRUE, nothing is done) or of an older public layout. Where `source` names no profile or no
// label of the list, the printer's are written into `source` itself. FALSE leaves `destination` unchanged.
BOOL MergeDevMode(DeviceMode* destination, DEVMODEW* source, HANDLE printer);
