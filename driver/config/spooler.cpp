#include "driver/config/spooler.h"

#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr DWORD kPrinterInfoLevel = 2;
constexpr DWORD kDriverInfoLevel = 3;

// These log a failure, whose code is the last error.
HeapArray<WCHAR> QueryFailed() {
    LogError("GetPrinterName: GetPrinter failed: 0x%x", GetLastError());
    return nullptr;
}

HeapArray<WCHAR> OutOfMemory() {
    LogError("GetPrinterName: malloc failed");
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

}  // namespace

HeapArray<WCHAR> GetPrinterName(HANDLE printer) {
    DWORD needed = {};
    GetPrinterW(printer, kPrinterInfoLevel, nullptr, 0, &needed);
    if (needed < sizeof(PRINTER_INFO_2W)) return QueryFailed();
    const HeapArray<BYTE> buffer = AllocateArray<BYTE>(needed);
    if (!buffer) return OutOfMemory();
    if (!GetPrinterW(printer, kPrinterInfoLevel, buffer.get(), needed, &needed)) return QueryFailed();
    HeapArray<WCHAR> name =
        DuplicateText(reinterpret_cast<const PRINTER_INFO_2W*>(buffer.get())->pPrinterName);
    return name ? std::move(name) : OutOfMemory();
}

HeapArray<WCHAR> GetPrinterDriverName(HANDLE printer) {
    DWORD needed = {};
    GetPrinterDriverW(printer, nullptr, kDriverInfoLevel, nullptr, 0, &needed);
    if (needed < sizeof(DRIVER_INFO_3W)) return nullptr;
    const HeapArray<BYTE> buffer = AllocateArray<BYTE>(needed);
    if (!buffer) return nullptr;
    const BOOL result = GetPrinterDriverW(printer, nullptr, kDriverInfoLevel, buffer.get(), needed, &needed);
    // Deliberate: 1797 is a failure too, although it is the code of an error and no result of the call.
    if (result == FALSE || result == ERROR_UNKNOWN_PRINTER_DRIVER) return nullptr;
    return DuplicateText(reinterpret_cast<const DRIVER_INFO_3W*>(buffer.get())->pName);
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

bool WriteToPrinter(HANDLE printer, std::string_view bytes) {
    if (bytes.empty()) return true;
    DWORD written = {};
    return WritePrinter(printer, const_cast<char*>(bytes.data()), static_cast<DWORD>(bytes.size()),
                        &written) != FALSE;
}

DWORD LastFailure() {
    const DWORD code = GetLastError();
    return code != ERROR_SUCCESS ? code : ERROR_GEN_FAILURE;
}

}  // namespace orvex
