// The library's entry points, and the table of the hooks that it offers to the graphics engine.

#include <iterator>

#include "driver/support/log.h"
#include "driver/support/module.h"
#include "platform/windows.h"

namespace orvex {

constexpr ULONG kLowestGraphicsEngineVersion = 0x30000;
constexpr ULONG kDriverVersion = 0x30000;

#define HOOK(name) \
    { INDEX_##name, reinterpret_cast<PFN>(reinterpret_cast<void*>(&(name))) }

// At namespace scope, since the C++ runtime guards the first use of a static of a function with a lock, whose
// handle would stay open in the spooler each time that the driver is unloaded.
const DRVFN kHookTable[] = {
    HOOK(DrvEnablePDEV),    HOOK(DrvResetPDEV),      HOOK(DrvCompletePDEV), HOOK(DrvDisablePDEV),
    HOOK(DrvEnableSurface), HOOK(DrvDisableSurface), HOOK(DrvStartPage),    HOOK(DrvSendPage),
    HOOK(DrvStartDoc),      HOOK(DrvEndDoc),
};

#undef HOOK

extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID /*lpReserved*/) {
    if (fdwReason == DLL_PROCESS_ATTACH) g_hModule = hinstDLL;
    return TRUE;
}

extern "C" BOOL APIENTRY DrvEnableDriver(ULONG iEngineVersion, ULONG cj, DRVENABLEDATA* pded) {
    if (iEngineVersion < kLowestGraphicsEngineVersion || cj < sizeof(DRVENABLEDATA)) return FALSE;
    pded->iDriverVersion = kDriverVersion;
    pded->c = static_cast<ULONG>(std::size(kHookTable));
    pded->pdrvfn = const_cast<DRVFN*>(kHookTable);
    return TRUE;
}

extern "C" BOOL APIENTRY DrvQueryDriverInfo(DWORD dwMode, PVOID pBuffer, DWORD cbBuf, PDWORD pcbNeeded) {
    const TraceScope trace("DrvQueryDriverInfo");
    if (dwMode != DRVQUERY_USERMODE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return trace.Bool(FALSE);
    }
    constexpr DWORD kUserMode = 1;
    *pcbNeeded = sizeof kUserMode;
    if (pBuffer == nullptr || cbBuf < sizeof kUserMode) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return trace.Bool(FALSE);
    }
    *static_cast<DWORD*>(pBuffer) = kUserMode;
    return trace.Bool(TRUE);
}

}  // namespace orvex
