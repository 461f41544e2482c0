#include "platform/posix/handles.h"

#include <cerrno>
#include <map>
#include <mutex>

namespace orvex::posix {

namespace {

struct HandleTable {
    std::mutex mutex;
    std::map<HANDLE, KernelObject*> objects;
    uintptr_t next = 0x100;
};

HandleTable& Handles() {
    static HandleTable* table = new HandleTable;
    return *table;
}

}  // namespace

HANDLE OpenHandle(KernelObject* object) {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    const HANDLE handle = reinterpret_cast<HANDLE>(table.next += 4);
    table.objects[handle] = object;
    return handle;
}

KernelObject* FindObject(HANDLE handle) {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    const auto found = table.objects.find(handle);
    return found == table.objects.end() ? nullptr : found->second;
}

size_t OpenHandleCount() {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    return table.objects.size();
}

KernelObject* ForgetHandle(HANDLE handle) {
    HandleTable& table = Handles();
    const std::lock_guard lock(table.mutex);
    const auto found = table.objects.find(handle);
    if (found == table.objects.end()) return nullptr;
    KernelObject* object = found->second;
    table.objects.erase(found);
    return object;
}

BOOL FailWithErrno() {
    switch (errno) {
        case ENOENT:
            SetLastError(ERROR_FILE_NOT_FOUND);
            break;
        case ENOTDIR:
            SetLastError(ERROR_PATH_NOT_FOUND);
            break;
        case EACCES:
        case EPERM:
        case EISDIR:
        case ELOOP:
            SetLastError(ERROR_ACCESS_DENIED);
            break;
        case EEXIST:
            SetLastError(ERROR_ALREADY_EXISTS);
            break;
        case ENOSPC:
            SetLastError(ERROR_DISK_FULL);
            break;
        default:
            SetLastError(ERROR_GEN_FAILURE);
            break;
    }
    return FALSE;
}

}  // namespace orvex::posix
