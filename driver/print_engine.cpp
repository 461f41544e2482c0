#include "driver/print_engine.h"

#include "driver/job_state.h"
#include "driver/support/installation.h"
#include "driver/support/last_error.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

void RestoreDirectory() {
    if (g_wszSavedDirectory[0] != 0) SetCurrentDirectoryW(g_wszSavedDirectory);
}

// Makes `folder` current and loads the library, which the system then finds there. Deliberate: a folder that
// can't be entered does not fail the job, since the system may find the library in another place that it
// searches. Only administrators may be able to write to those places.
HMODULE LoadFrom(const WCHAR* folder) {
    const DWORD length = GetCurrentDirectoryW(MAX_PATH, g_wszSavedDirectory);
    if (length == 0 || length >= MAX_PATH) g_wszSavedDirectory[0] = 0;  // unknown, so it can't be restored
    SetCurrentDirectoryW(folder);
    const HMODULE library = LoadLibraryW(L"hpcrlib.dll");
    if (library == nullptr) {
        const PreservedLastError lastError;
        RestoreDirectory();
    }
    return library;
}

bool ResolveEntryPoints() {
    for (const PrintEngineExport& entry : kPrintEngineExports) {
        const FARPROC function = GetProcAddress(g_hHpcrlib, entry.name);
        if (function == nullptr) {
            LogError("Error: could not get \"%s\" address", entry.name);
            return false;
        }
        *entry.In(g_engine) = reinterpret_cast<void*>(function);
    }
    return true;
}

}  // namespace

bool BindPrintEngine() {
    const HeapArray<WCHAR> folder = GetInstallationFolder();
    if (!folder) {
        LogError("Error: could get app path");
        return false;
    }
    g_hHpcrlib = LoadFrom(folder.get());
    if (g_hHpcrlib == nullptr) {
        LogError("Error: could not load hpcrlib.DLL");
        return false;
    }
    if (ResolveEntryPoints()) return true;
    const PreservedLastError lastError;
    UnbindPrintEngine();
    return false;
}

void UnbindPrintEngine() {
    if (g_hHpcrlib == nullptr) return;
    FreeLibrary(g_hHpcrlib);
    g_hHpcrlib = nullptr;
    g_engine = {};
    RestoreDirectory();
}

void EndEngineJob() {
    if (g_hHpcrlib == nullptr) return;
    const uint32_t result = g_engine.HPCRLIB_JobEnd(g_hJob);
    if (result != kEngineSuccess) LogError("Error: could not end the job %x %x", result, g_hJob);
    UnbindPrintEngine();
    g_hJob = 0;
    g_pCurrentPdev = nullptr;
}

}  // namespace orvex
