// The diagnostic dump of a device mode.
#pragma once

#include "driver/config/device_mode.h"

namespace orvex {

// Writes the whole record to the diagnostic log, at Trace; a record whose dmSize is not 220 gives one line at
// Info, a null record none.
void DumpDevMode(const DEVMODEW* record);

}  // namespace orvex
