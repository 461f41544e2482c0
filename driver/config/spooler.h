// Calls of the spooler for an open printer.
#pragma once

#include <string_view>

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

// Returns the printer's name; null, with the last error set, on a failure of the spooler or out of memory.
HeapArray<WCHAR> GetPrinterName(HANDLE printer);

// Returns the name of the printer's driver, or null.
HeapArray<WCHAR> GetPrinterDriverName(HANDLE printer);

// Opens the same printer once more with the rights `access`: GENERIC_READ to read its data,
// PRINTER_ALL_ACCESS to change it. The last error is 0 on success. Returns null on failure, with the last
// error set. Deliberate: callers close the handle with CloseHandle.
HANDLE OpenPrinterWithAccess(HANDLE printer, DWORD access);

// Writes bytes to the printer, in one call, and returns whether the spooler took them; no bytes need no call.
// Deliberate: the count that the spooler reports is not checked.
bool WriteToPrinter(HANDLE printer, std::string_view bytes);

// Returns the last error, or ERROR_GEN_FAILURE if that is 0: never the code of a success.
DWORD LastFailure();

}  // namespace orvex
