#include "driver/support/installation.h"

#include "driver/support/text.h"
#include "platform/shell.h"

namespace orvex {

namespace {

constexpr const WCHAR* kFolders[] = {L"Quorvane", L"Orvex Series"};

// Writes the installation folder's path into `path` of MAX_PATH characters. Returns FALSE on failure, with
// the last error set.
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
