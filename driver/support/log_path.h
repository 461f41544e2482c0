// Where the diagnostic log and its control file are: in c:\temp, named after the driver's module. The log of
// orvexgdi.dll is c:\temp\orvexgdi.txt, its control file c:\temp\orvexgdi.dat.
#pragma once

#include "driver/support/heap.h"

namespace orvex {

// Returns a new copy of the log's path; null when the module has no usable file name.
HeapArray<char> GetLogPath();

// Return the path of the log and of the control file; null when there is none. The paths are worked out on
// first use and then never change.
const char* LogPath();
const char* ControlFilePath();

}  // namespace orvex
