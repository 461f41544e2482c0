// The installation folder, the files in it, and small queries of the spooler that several rooms share.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Codes that the folder query leaves as the thread's last error.
constexpr DWORD kErrorPathAllocation = 0x20010001;
constexpr DWORD kErrorPathAppend = 0x20010009;

// The installation folder, "<common application data>\Quorvane\Orvex Series", without a trailing backslash.
// It is not created. Null on failure, with the last error kErrorPathAllocation, kErrorPathAppend or the
// system's; the last error is 0 on success.
HeapArray<WCHAR> GetInstallationFolder();

// Opens the file `name` of `folder` for reading, shared with other readers; it must exist. The handle is the
// caller's. INVALID_HANDLE_VALUE when it can't be opened, or when `folder` is null or memory is short.
HANDLE OpenInstallationFile(const WCHAR* folder, const WCHAR* name);

// The name of the printer's driver, or null when the spooler does not tell it.
HeapArray<WCHAR> GetPrinterDriverName(HANDLE printer);

}  // namespace orvex
