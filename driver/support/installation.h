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

// Returns the same, and logs a failure.
HeapArray<WCHAR> FindInstallationFolder();

// Opens the file `name` of `folder`, which must exist, for reading, shared with other readers. The caller
// owns the handle. Returns INVALID_HANDLE_VALUE if that fails, also when `folder` is null.
HANDLE OpenInstallationFile(const WCHAR* folder, const WCHAR* name);

}  // namespace orvex
