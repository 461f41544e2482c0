#include "driver/support/log_rotation.h"

#include <cstring>
#include <string_view>

#include "driver/support/heap.h"
#include "platform/shell.h"

namespace orvex {

namespace {

// Returns "<log path without its extension>.1.txt"; null when the process is out of memory.
HeapArray<char> FirstBackupPath(const char* path) {
    const std::string_view stem(path, static_cast<size_t>(strrchr(path, '.') - path));
    constexpr char kSuffix[] = ".1.txt";
    HeapArray<char> backup = AllocateArray<char>(stem.size() + sizeof kSuffix);
    if (backup) {
        memcpy(backup.get(), stem.data(), stem.size());
        memcpy(backup.get() + stem.size(), kSuffix, sizeof kSuffix);
    }
    return backup;
}

}  // namespace

void MoveLogToBackup(const char* path) {
    const HeapArray<char> backup = FirstBackupPath(path);
    if (!backup) return;
    if (PathFileExistsA(backup.get())) RotateLogFile(backup.get());
    MoveFileA(path, backup.get());
}

void RotateLogFile(const char* name) {
    const size_t length = strlen(name);
    const char* extension = strrchr(name, '.');
    if (extension == nullptr || extension == name) return;
    const size_t digit = static_cast<size_t>(extension - name) - 1;
    if (name[digit] == '9') {
        DeleteFileA(name);
        return;
    }
    HeapArray<char> next = AllocateArray<char>(length + 1);
    if (!next) return;
    memcpy(next.get(), name, length + 1);
    ++next[digit];
    if (PathFileExistsA(next.get())) RotateLogFile(next.get());
    MoveFileA(name, next.get());
}

}  // namespace orvex
