// The library's entry, and the table of the hooks that it offers to the graphics engine.

#include "support/log.h"
#include "support/module.h"
#include "support/platform.h"

namespace {

constexpr ULONG kLowestEngineVersion = 0x30000;
constexpr ULONG kDriverVersion = 0x30000;

template <typename Hook>
PFN AsHook(Hook hook) {
    return reinterpret_cast<PFN>(reinterpret_cast<void*>(hook));
}

const DRVFN* HookTable(ULONG* count) {
    static const DRVFN table[] = {
        {INDEX_DrvEnablePDEV, AsHook(&DrvEnablePDEV)},
        {INDEX_DrvResetPDEV, AsHook(&DrvResetPDEV)},
        {INDEX_DrvCompletePDEV, AsHook(&DrvCompletePDEV)},
        {INDEX_DrvDisablePDEV, AsHook(&DrvDisablePDEV)},
        {INDEX_DrvEnableSurface, AsHook(&DrvEnableSurface)},
        {INDEX_DrvDisableSurface, AsHook(&DrvDisableSurface)},
        {INDEX_DrvStartPage, AsHook(&DrvStartPage)},
        {INDEX_DrvSendPage, AsHook(&DrvSendPage)},
        {INDEX_DrvStartDoc, AsHook(&DrvStartDoc)},
        {INDEX_DrvEndDoc, AsHook(&DrvEndDoc)},
    };
    *count = static_cast<ULONG>(sizeof table / sizeof table[0]);
    return table;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpReserved) {
    (void)lpReserved;
    if (fdwReason == DLL_PROCESS_ATTACH) g_hModule = hinstDLL;
    return TRUE;
}

extern "C" BOOL APIENTRY DrvEnableDriver(ULONG iEngineVersion, ULONG cj, DRVENABLEDATA* pded) {
    if (iEngineVersion < kLowestEngineVersion || cj < sizeof(DRVENABLEDATA)) return FALSE;
    pded->iDriverVersion = kDriverVersion;
    pded->pdrvfn = const_cast<DRVFN*>(HookTable(&pded->c));
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
