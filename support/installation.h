// The installation folder, and small queries of the spooler that several rooms share.
#pragma once

#include "support/heap.h"
#include "support/platform.h"

// Codes that the folder and driver-name queries leave as the thread's last error.
constexpr DWORD kErrorPathAllocation = 0x20010001;
constexpr DWORD kErrorPathAppend = 0x20010009;

// The installation folder, "<common application data>\Quorvane\Orvex Series", without a trailing backslash. It is
// not created. Null on failure, with the last error kErrorPathAllocation, kErrorPathAppend or the system's; the last
// error is 0 on success.
HeapArray<WCHAR> GetInstallationFolder();

// The name of the printer's driver, or null when the spooler does not tell it.
HeapArray<WCHAR> GetPrinterDriverName(HANDLE printer);
