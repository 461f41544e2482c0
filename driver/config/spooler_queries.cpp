#include "driver/config/spooler_queries.h"

#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr DWORD kPrinterInfoLevel = 2;

// Both log the failure; its code is the last error.
HeapArray<WCHAR> QueryFailed() {
    LogError("GetPrinterName: GetPrinter failed: 0x%x", GetLastError());
    return nullptr;
}

HeapArray<WCHAR> MemoryShort() {
    LogError("GetPrinterName: malloc failed");
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

}  // namespace

HeapArray<WCHAR> GetPrinterName(HANDLE printer) {
    DWORD needed = 0;
    GetPrinterW(printer, kPrinterInfoLevel, nullptr, 0, &needed);
    if (needed < sizeof(PRINTER_INFO_2W)) return QueryFailed();
    const HeapArray<BYTE> buffer = AllocateArray<BYTE>(needed);
    if (!buffer) return MemoryShort();
    if (!GetPrinterW(printer, kPrinterInfoLevel, buffer.get(), needed, &needed)) return QueryFailed();
    HeapArray<WCHAR> name =
        DuplicateText(reinterpret_cast<const PRINTER_INFO_2W*>(buffer.get())->pPrinterName);
    return name ? std::move(name) : MemoryShort();
}

HANDLE OpenPrinterWithAccess(HANDLE printer, DWORD access) {
    const HeapArray<WCHAR> name = GetPrinterName(printer);
    if (!name) return nullptr;
    HANDLE opened = nullptr;
    PRINTER_DEFAULTSW defaults = {nullptr, nullptr, access};
    DWORD code = ERROR_SUCCESS;
    if (!OpenPrinterW(name.get(), &opened, &defaults)) {
        code = GetLastError();
        opened = nullptr;
        LogError("OpenPrinterWithAccess: error %d (%d)", code, access);
    }
    SetLastError(code);
    return opened;
}

DWORD LastFailure() {
    const DWORD code = GetLastError();
    return code != ERROR_SUCCESS ? code : ERROR_GEN_FAILURE;
}

}  // namespace orvex
