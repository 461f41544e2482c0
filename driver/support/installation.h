// The installation folder and the files in it.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Last-error codes of GetInstallationFolder.
constexpr DWORD kErrorPathAllocation = 0x20010001;
constexpr DWORD kErrorPathAppend = 0x20010009;

// Returns the installation folder, "<common application data>\Quorvane\Orvex Series", without a trailing
// backslash; it is not created. The last error is 0 on success. Null on failure, with the last error
// kErrorPathAllocation, kErrorPathAppend or the system's.
HeapArray<WCHAR> GetInstallationFolder();

// Opens the file `name` of `folder` for reading, shared with other readers; it must exist. The caller owns
// the handle. Returns INVALID_HANDLE_VALUE when the file can't be opened, `folder` is null or the process is
// out of memory.
HANDLE OpenInstallationFile(const WCHAR* folder, const WCHAR* name);

}  // namespace orvex
