#include "driver/support/log_path.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <utility>

#include "driver/support/module.h"

namespace orvex {

namespace {

constexpr char kLogFolder[] = "c:\\temp";
constexpr size_t kMaxModulePath = 260;
constexpr size_t kExtensionLetters = 3;

// A path that is worked out on first use and lives as long as the process. Of threads that work it out at the
// same time, the first one's is kept.
using KeptPath = std::atomic<char*>;

const char* Keep(KeptPath& kept, HeapArray<char> path) {
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
    const char* path = kept;
    return path != nullptr ? path : Keep(kept, GetLogPath());
}

const char* ControlFilePath() {
    static KeptPath kept;
    if (const char* path = kept) return path;
    HeapArray<char> path = GetLogPath();
    if (path) memcpy(path.get() + strlen(path.get()) - kExtensionLetters, "dat", kExtensionLetters);
    return Keep(kept, std::move(path));
}

}  // namespace orvex
