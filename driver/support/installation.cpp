#include "driver/support/installation.h"

#include "driver/support/text.h"
#include "platform/shell.h"

namespace orvex {

namespace {

constexpr const WCHAR* kFolders[] = {L"Quorvane", L"Orvex Series"};

constexpr DWORD kDriverInfoLevel = 3;

// Writes the installation folder's path into `path` of MAX_PATH characters. FALSE leaves the code of what
// failed as the last error.
BOOL BuildInstallationPath(WCHAR* path) {
    if (!SHGetSpecialFolderPathW(nullptr, path, CSIDL_COMMON_APPDATA, FALSE)) return FALSE;
    for (const WCHAR* folder : kFolders) {
        if (!PathAppendW(path, folder)) {
            SetLastError(kErrorPathAppend);
            return FALSE;
        }
    }
    SetLastError(ERROR_SUCCESS);
    return TRUE;
}

// Deliberate: a result of 1797 counts as a failure too, although that is an error's code and not a result of
// the call.
bool DriverWasTold(BOOL result) {
    return result != FALSE && result != ERROR_UNKNOWN_PRINTER_DRIVER;
}

}  // namespace

HeapArray<WCHAR> GetInstallationFolder() {
    HeapArray<WCHAR> path = AllocateZeroedArray<WCHAR>(MAX_PATH);
    if (!path) {
        SetLastError(kErrorPathAllocation);
        return nullptr;
    }
    if (!BuildInstallationPath(path.get())) return nullptr;
    return path;
}

HANDLE OpenInstallationFile(const WCHAR* folder, const WCHAR* name) {
    if (folder == nullptr) return INVALID_HANDLE_VALUE;
    const WideView parts[] = {{folder, TextLength(folder)}, {L"\\", 1}, {name, TextLength(name)}};
    const size_t capacity = parts[0].size + parts[1].size + parts[2].size + 1;
    const HeapArray<WCHAR> path = AllocateArray<WCHAR>(capacity);
    if (!path) return INVALID_HANDLE_VALUE;
    size_t length = 0;
    for (const WideView& part : parts) {
        CopyText(path.get() + length, capacity - length, part);
        length += part.size;
    }
    return CreateFileW(path.get(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

HeapArray<WCHAR> GetPrinterDriverName(HANDLE printer) {
    DWORD needed = 0;
    GetPrinterDriverW(printer, nullptr, kDriverInfoLevel, nullptr, 0, &needed);
    if (needed < sizeof(DRIVER_INFO_3W)) return nullptr;
    const HeapArray<BYTE> buffer = AllocateArray<BYTE>(needed);
    if (!buffer) return nullptr;
    if (!DriverWasTold(
            GetPrinterDriverW(printer, nullptr, kDriverInfoLevel, buffer.get(), needed, &needed))) {
        return nullptr;
    }
    return DuplicateText(reinterpret_cast<const DRIVER_INFO_3W*>(buffer.get())->pName);
}

}  // namespace orvex
