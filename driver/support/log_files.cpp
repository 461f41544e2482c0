#include "driver/support/log_files.h"

#include <atomic>
#include <cstdio>
#include <cstring>

#include "driver/support/module.h"
#include "platform/shell.h"

namespace orvex {

namespace {

constexpr char kLogFolder[] = "c:\\temp";
constexpr size_t kMaxModulePath = 260;
constexpr size_t kExtensionLetters = 3;

// A path that is worked out on first use and lives as long as the process.
using KeptPath = std::atomic<char*>;

// Returns the log's path with another extension. Of threads that work it out together, one's is kept.
const char* Kept(KeptPath& kept, const char* extension) {
    if (const char* path = kept) return path;
    HeapArray<char> path = GetLogPath();
    if (path) memcpy(path.get() + strlen(path.get()) - kExtensionLetters, extension, kExtensionLetters);
    char* earlier = nullptr;
    return kept.compare_exchange_strong(earlier, path.get()) ? path.release() : earlier;
}

}  // namespace

HeapArray<char> GetLogPath() {
    char module[kMaxModulePath] = {};
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetModuleFileNameA(g_hModule, module, sizeof module);
    if (GetLastError() != ERROR_SUCCESS || length <= kExtensionLetters || length >= sizeof module)
        return nullptr;
    memcpy(module + length - kExtensionLetters, "txt", kExtensionLetters);
    const char* name = strrchr(module, '\\');
    if (name == nullptr) return nullptr;
    const size_t size = strlen(kLogFolder) + strlen(name) + 1;
    HeapArray<char> path = AllocateArray<char>(size);
    if (path) snprintf(path.get(), size, "%s%s", kLogFolder, name);
    return path;
}

const char* LogPath() {
    static KeptPath kept;
    return Kept(kept, "txt");
}

const char* ControlFilePath() {
    static KeptPath kept;
    return Kept(kept, "dat");
}

void MoveLogToBackup(const char* path) {
    constexpr char kSuffix[] = ".1.txt";
    const size_t stem = static_cast<size_t>(strrchr(path, '.') - path);
    const HeapArray<char> backup = AllocateArray<char>(stem + sizeof kSuffix);
    if (!backup) return;
    memcpy(backup.get(), path, stem);
    memcpy(backup.get() + stem, kSuffix, sizeof kSuffix);
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
