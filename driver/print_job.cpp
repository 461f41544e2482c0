// The hooks of a job, which DrvStartDoc starts and DrvEndDoc ends, with the print engine bound in between.

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "driver/color/color_adjustment.h"
#include "driver/config/device_mode.h"
#include "driver/device_capabilities.h"
#include "driver/job_output.h"
#include "driver/job_state.h"
#include "driver/profiles/profile_file.h"
#include "driver/support/handle.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"

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

// Unloads the library and restores the current directory.
void UnbindPrintEngine() {
    FreeLibrary(g_hHpcrlib);
    g_hHpcrlib = nullptr;
    g_engine = {};
    RestoreDirectory();
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

// Makes the installation folder the current directory until the job ends, loads the print engine's library
// and resolves its entry points. On failure the reason is logged, nothing stays loaded, the current directory
// is what it was, and the last error is that of the call that failed.
bool BindPrintEngine() {
    const HeapArray<WCHAR> folder = FindInstallationFolder();
    if (!folder) return false;
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

// Ends the print engine's job and unbinds the library. Does nothing while no library is bound.
void EndEngineJob() {
    if (g_hHpcrlib == nullptr) return;
    const uint32_t result = g_engine.HPCRLIB_JobEnd(g_hJob);
    if (result != kEngineSuccess) LogError("Error: could not end the job %x %x", result, g_hJob);
    UnbindPrintEngine();
    g_hJob = 0;
    g_pCurrentPdev = nullptr;
}

void ErasePage(SURFOBJ* surface) {
    constexpr ULONG kPaperWhite = 0xFFFFFF;
    RECTL page = {0, 0, surface->sizlBitmap.cx, surface->sizlBitmap.cy};
    EngEraseSurface(surface, &page, kPaperWhite);
}

// Lets an instance that DrvResetPDEV made inside a running job take that job over; the print engine, the
// profile and the header go on as they are.
void ContinueJob(PDEV* pdev) {
    if (g_pCurrentPdev == pdev) return;
    LogInfo("pdev: %x<-%x", g_pCurrentPdev, pdev);
    g_pCurrentPdev = pdev;
}

bool StartEngineJob(PDEV* pdev, const SURFOBJ* surface, int32_t resolutionMode) {
    g_pCurrentPdev = pdev;
    g_cxSurface = static_cast<uint32_t>(surface->sizlBitmap.cx);
    g_cySurface = static_cast<uint32_t>(surface->sizlBitmap.cy);
    g_hJob = g_engine.HPCRLIB_JobStart(&JobOutputCallback, &g_pCurrentPdev,
                                       static_cast<uint32_t>(resolutionMode), 0);
    if (g_hJob != 0) return true;
    LogError("Error: could not start a job");
    UnbindPrintEngine();
    g_pCurrentPdev = nullptr;
    return false;
}

void LoadJobProfile(const PrivateDevMode& settings, int32_t resolutionMode) {
    char name[kMaxNarrowName] = {};
    char path[sizeof ORVEX_PROFILES_FOLDER + kMaxNarrowName];
    const WideView profile = FieldText(settings.colorProfile);
    if (profile.empty()) {
        LogInfo("Load deafult profile");
    } else {
        NarrowText(name, sizeof name, profile);
        LogInfo("Load profile [%S]", profile);
        snprintf(path, sizeof path, ORVEX_PROFILES_FOLDER "%s", name);
    }
    g_nProfileKind =
        zvc_load_profile(profile.empty() ? nullptr : path, resolutionMode, &g_cHpres, name, sizeof name);
    CopyText(g_szProfileName, FieldText(name));
}

AdjustmentScales ScalesOfSettings() {
    const AdjustmentScales absent;
    const auto scale = [](const char* key, double value) { return LookupNumber("[Color]", key, value); };
    return {.tone = scale("tone_scale=", absent.tone),
            .saturation = scale("saturation_scale=", absent.saturation),
            .brightness = scale("brightness_scale=", absent.brightness),
            .black = scale("black_scale=", absent.black),
            .yellow = scale("yellow_scale=", absent.yellow),
            .cyan = scale("cyan_scale=", absent.cyan),
            .magenta = scale("magenta_scale=", absent.magenta)};
}

void AdjustJobColors(const PrivateDevMode& settings) {
    const int32_t values[kAdjustmentValues] = {
        settings.adj_brightness, settings.adj_saturation, settings.adj_colortone, settings.adj_cyan,
        settings.adj_magenta,    settings.adj_yellow,     settings.adj_black,
    };
    if (std::all_of(std::begin(values), std::end(values), [](int32_t value) { return value == 0; })) return;
    LogError("ca t:%d,b:%d,s:%d,C:%d,M:%d,Y:%d,K:%d\n", values[kTone], values[kBrightness],
             values[kSaturation], values[kCyan], values[kMagenta], values[kYellow], values[kBlack]);
    const AdjustmentScales scales = ScalesOfSettings();
    const ColorMovement by = MovementOf(values, scales);
    LogError("ca %lf,%lf,%lf,%lf,%lf,%lf,%lf\n", by.tone, by.brightness, by.saturation, by.cyan, by.black,
             by.yellow, by.magenta);
    AdjustColors(values, scales);
}

bool StartNewJob(PDEV* pdev, const SURFOBJ* surface, const WCHAR* documentName) {
    EndEngineJob();  // a job that was never ended would keep its library and the current directory
    ResetJobPages();
    pdev->pageCount = 0;
    pdev->flags |= PDEV_IN_JOB;
    NarrowText(g_szJobName, sizeof g_szJobName, {documentName, TextLength(documentName)});

    if (!BindPrintEngine()) return false;
    const int32_t resolutionMode = GetDeviceResolution(pdev) == 600 ? kResolution600 : kResolution300;
    if (!StartEngineJob(pdev, surface, resolutionMode)) return false;
    ResetJobOutput();
    LoadJobProfile(pdev->devmode.priv, resolutionMode);
    AdjustJobColors(pdev->devmode.priv);
    return true;
}

}  // namespace

extern "C" BOOL APIENTRY DrvStartDoc(SURFOBJ* pso, LPWSTR pwszDocName, DWORD dwJobId) {
    LoadLogMask();
    const TraceScope trace("DrvStartDoc");
    PDEV* pdev = RequireInstance(pso);
    if (pdev == nullptr) return trace.Bool(FALSE);

    DumpDevMode(&pdev->devmode.pub);
    AskForDriverName(*pdev);
    ErasePage(pso);
    LogInfo("JobId:%d docname:%S %d %d", dwJobId, static_cast<const WCHAR*>(pwszDocName),
            pdev->flags & PDEV_RESET, pdev->flags & PDEV_IN_JOB);

    bool started = true;
    if ((pdev->flags & PDEV_RESET) && (pdev->flags & PDEV_IN_JOB)) {
        ContinueJob(pdev);
    } else {
        started = StartNewJob(pdev, pso, pwszDocName);
    }
    DumpDevMode(&pdev->devmode.pub);
    return trace.Bool(started);
}

extern "C" BOOL APIENTRY DrvStartPage(SURFOBJ* pso) {
    const TraceScope trace("DrvStartPage");
    ++g_nPage;
    LogInfo("Page: %d", g_nPage);
    const PDEV* pdev = RequireInstance(pso);
    if (pdev == nullptr) return trace.Bool(FALSE);
    if (pdev->flags & PDEV_NO_MORE_PAGES) return trace.Bool(FALSE);

    AskForDriverName(*pdev);
    DumpDevMode(&pdev->devmode.pub);
    ErasePage(pso);
    g_resolutionSwitch.pending = false;
    return trace.Bool(TRUE);
}

extern "C" BOOL APIENTRY DrvEndDoc(SURFOBJ* pso, FLONG /*fl*/) {
    const TraceScope trace("DrvEndDoc");
    EndEngineJob();  // even for an invalid instance
    PDEV* pdev = RequireInstance(pso);
    if (pdev == nullptr) return trace.Bool(FALSE);
    AskForDriverName(*pdev);
    pdev->flags &= ~static_cast<uint32_t>(PDEV_RESET | PDEV_IN_JOB);
    return trace.Bool(TRUE);
}

}  // namespace orvex
