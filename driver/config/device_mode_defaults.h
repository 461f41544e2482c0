// The printer's default device mode, built from the installation and the printer's data.
#pragma once

#include "driver/config/device_mode.h"
#include "driver/config/label_sizes.h"
#include "platform/windows.h"

namespace orvex {

// Builds the printer's default record: zeros, then the defaults, the default label and the default color
// profile. Reads the log mask again first. Imports media.inf when the printer has no labels yet.
// `printerName` may be null. Returns TRUE.
BOOL SetupDefaultDevMode(DeviceMode* record, const WCHAR* printerName, HANDLE printer);

// Chooses the label that a new record begins with: the one of the printer's list that settings.inf names, or
// "A4", 8.500 by 11.000 inches, which leaves `paperNumber` as it is. Returns 1.
int ChooseDefaultMedia(HANDLE printer, char (&name)[64], char (&width)[8], char (&length)[8], uint32_t* units,
                       int16_t* paperNumber);

// Chooses the profile that a new record begins with: the installed one that settings.inf names, or the first
// one. `profile` stays as it is when there is none. Returns TRUE.
BOOL AssignDefaultColorProfile(HANDLE printer, WCHAR (&profile)[kMaxProfileName]);

}  // namespace orvex
