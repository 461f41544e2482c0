// Questions to the spooler about a printer that is open.
#pragma once

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// The printer's name, or null when the spooler does not tell it or memory is short; the last error then is
// the cause.
HeapArray<WCHAR> GetPrinterName(HANDLE printer);

// Opens the same printer once more with the rights `access`: GENERIC_READ to read its data,
// PRINTER_ALL_ACCESS to change it. The last error is 0 on success. Null on failure, with the last error set.
// Deliberate: callers close the handle with CloseHandle.
HANDLE OpenPrinterWithAccess(HANDLE printer, DWORD access);

// The last error as the code of a failure: never 0.
DWORD LastFailure();

}  // namespace orvex
