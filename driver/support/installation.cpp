#include "driver/support/installation.h"

#include "driver/support/log.h"
#include "platform/shell.h"

namespace orvex {

HeapArray<WCHAR> GetInstallationFolder() {
    HeapArray<WCHAR> path = AllocateZeroedArray<WCHAR>(MAX_PATH);
    if (!path) {
        SetLastError(kErrorPathAllocation);
        return nullptr;
    }
    if (!SHGetSpecialFolderPathW(nullptr, path.get(), CSIDL_COMMON_APPDATA, FALSE)) return nullptr;
    for (const WCHAR* folder : {L"Quorvane", L"Orvex Series"}) {
        if (PathAppendW(path.get(), folder)) continue;
        SetLastError(kErrorPathAppend);
        return nullptr;
    }
    SetLastError(ERROR_SUCCESS);
    return path;
}

HeapArray<WCHAR> FindInstallationFolder() {
    HeapArray<WCHAR> path = GetInstallationFolder();
    if (!path) LogError("Error: could get app path");
    return path;
}

HANDLE OpenInstallationFile(const WCHAR* folder, const WCHAR* name) {
    if (folder == nullptr) return INVALID_HANDLE_VALUE;
    const WideView parts[] = {folder, L"\\", name};
    const size_t capacity = parts[0].size() + parts[1].size() + parts[2].size() + 1;
    const HeapArray<WCHAR> path = AllocateArray<WCHAR>(capacity);
    if (!path) return INVALID_HANDLE_VALUE;
    size_t length = 0;
    for (const WideView& part : parts) {
        CopyText(path.get() + length, capacity - length, part);
        length += part.size();
    }
    return CreateFileW(path.get(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace orvex
