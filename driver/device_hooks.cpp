// The hooks of the device instance: DrvEnablePDEV builds it, DrvCompletePDEV and DrvResetPDEV add to it,
// DrvDisablePDEV frees it. And those of its page bitmap: the graphics engine manages one of 32 bpp, as large
// as the page, for each instance, and nobody else draws into it.

#include "driver/config/device_mode_defaults.h"
#include "driver/config/device_mode_merge.h"
#include "driver/config/label_sizes.h"
#include "driver/device_capabilities.h"
#include "driver/device_instance.h"
#include "driver/job_state.h"
#include "driver/support/log.h"
#include "driver/support/module.h"

namespace orvex {

namespace {

struct LocalFreeDeleter {
    void operator()(PDEV* pdev) const { LocalFree(pdev); }
};
using OwnedInstance = std::unique_ptr<PDEV, LocalFreeDeleter>;

// Takes the size of a label that the public part names, unless the private part describes that label. The
// last entry with the label's number wins.
void TakeCustomLabelSize(PDEV* pdev) {
    DEVMODEW& pub = pdev->devmode.pub;
    if (pub.dmPaperSize < kPaperDefault || pub.dmPaperSize == pdev->devmode.priv.dmPaperSize) return;
    const LabelList list(pdev->hPrinter);
    const LabelSize* label = list.LastOfNumber(pub.dmPaperSize);
    if (label == nullptr) return;
    SetPaperSize(&pub, FieldText(label->width), FieldText(label->length), label->units);
}

void FillPDevData(PDEV* pdev, DEVMODEW* pdm, const WCHAR* deviceName) {
    const TraceScope trace("FillPDevData");
    pdev->signatureTail = kPdevSignature;
    pdev->signature = kPdevSignature;
    SetupDefaultDevMode(&pdev->devmode, deviceName, pdev->hPrinter);
    MergeDevMode(&pdev->devmode, pdm, pdev->hPrinter);
    TakeCustomLabelSize(pdev);

    const DEVMODEW& pub = pdev->devmode.pub;
    const auto width = static_cast<uint32_t>(pub.dmPaperWidth);
    const auto length = static_cast<uint32_t>(pub.dmPaperLength);
    const bool portrait = pub.dmOrientation == DMORIENT_PORTRAIT;
    pdev->dwPageWidth = portrait ? width : length;
    pdev->dwPageLength = portrait ? length : width;
    pdev->orientation = pub.dmOrientation;
    trace.Bool(TRUE);
}

// Carries one field of the old instance to the new one, and logs a change.
template <typename T>
void Carry(const char* line, const T& oldField, T& newField) {
    if (oldField == newField) return;
    LogInfo(line, oldField, newField);
    newField = oldField;
}

void CarryCopyCount(const PDEV& old, PDEV& fresh) {
    DEVMODEW& pub = fresh.devmode.pub;
    if (fresh.cCopies == kNoCarriedCopies) {
        const int16_t before = old.devmode.pub.dmCopies;
        if (pub.dmCopies != before) LogInfo("dmCopies %d -> %d", before, pub.dmCopies);
        return;
    }
    const auto copies = static_cast<int16_t>(fresh.cCopies);
    if (pub.dmCopies == copies) return;
    LogInfo("cdmCopies %d<-%d", pub.dmCopies, fresh.cCopies);
    pub.dmCopies = copies;
}

}  // namespace

extern "C" DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW* pdm, LPWSTR /*pwszLogAddress*/, ULONG cPat,
                                         HSURF* phsurfPatterns, ULONG cjCaps, ULONG* pdevcaps,
                                         ULONG cjDevInfo, DEVINFO* pdi, HDEV /*hdev*/, LPWSTR pwszDeviceName,
                                         HANDLE hDriver) {
    const TraceScope trace("DrvEnablePDEV");
    const auto fail = [&trace] { return reinterpret_cast<DHPDEV>(trace.Pointer<PDEV>(nullptr)); };

    OwnedInstance pdev(static_cast<PDEV*>(LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, sizeof(PDEV))));
    if (!pdev) return fail();
    pdev->cCopies = kNoCarriedCopies;
    pdev->hPrinter = hDriver;
    pdev->hModule = g_hModule;
    if (pdev->hModule == nullptr) return fail();
    FillPDevData(pdev.get(), pdm, pwszDeviceName);
    FillPDevCaps(pdev.get(), cjCaps, reinterpret_cast<GDIINFO*>(pdevcaps));
    if (!FillPDevInfo(pdev.get(), cjDevInfo, pdi)) return fail();
    for (ULONG i = 0; phsurfPatterns != nullptr && i < cPat; ++i) phsurfPatterns[i] = nullptr;
    return reinterpret_cast<DHPDEV>(trace.Pointer(pdev.release()));
}

extern "C" void APIENTRY DrvCompletePDEV(DHPDEV dhpdev, HDEV hdev) {
    const TraceScope trace("DrvCompletePDEV");
    if (PDEV* pdev = RequireInstance(dhpdev)) pdev->hdev = hdev;
}

extern "C" void APIENTRY DrvDisablePDEV(DHPDEV dhpdev) {
    const TraceScope trace("DrvDisablePDEV");
    PDEV* pdev = RequireInstance(dhpdev);
    if (pdev == nullptr) return;
    // Output of the print engine after this finds no instance, and the output callback refuses it.
    if (g_pCurrentPdev == pdev) g_pCurrentPdev = nullptr;
    LocalFree(pdev);
}

// Deliberate: the page size is the old instance's, so that a reset inside a job keeps the page geometry.
extern "C" BOOL APIENTRY DrvResetPDEV(DHPDEV dhpdevOld, DHPDEV dhpdevNew) {
    const TraceScope trace("DrvResetPDEV");
    const PDEV* old = RequireInstance(dhpdevOld);
    PDEV* fresh = RequireInstance(dhpdevNew);
    if (old == nullptr || fresh == nullptr) return trace.Bool(FALSE);

    Carry("dwPageWidth %d<-%d", old->dwPageWidth, fresh->dwPageWidth);
    Carry("dwPageLength %d<-%d", old->dwPageLength, fresh->dwPageLength);
    Carry("orientation %d<-%d", old->orientation, fresh->orientation);
    Carry("yCoord %d<-%d", old->yCoord, fresh->yCoord);
    Carry("cCopies %d<-%d", old->cCopies, fresh->cCopies);
    Carry("pageCount %d<-%d", old->pageCount, fresh->pageCount);
    CarryCopyCount(*old, *fresh);
    fresh->carryWord1 = old->carryWord1;
    fresh->carryWord2 = old->carryWord2;
    fresh->flags |= PDEV_RESET | (old->flags & PDEV_IN_JOB);
    return trace.Bool(TRUE);
}

extern "C" HSURF APIENTRY DrvEnableSurface(DHPDEV dhpdev) {
    const TraceScope trace("DrvEnableSurface");
    const auto fail = [&trace] { return reinterpret_cast<HSURF>(trace.Pointer<void>(nullptr)); };
    PDEV* pdev = RequireInstance(dhpdev);
    if (pdev == nullptr) return fail();

    const int16_t dpi = GetDeviceResolution(pdev);
    const SIZEL size = {static_cast<LONG>(PixelCount(dpi, pdev->dwPageWidth)),
                        static_cast<LONG>(PixelCount(dpi, pdev->dwPageLength))};
    LogInfo("Surface %dx%d at %ddpi 32BPP", size.cx, size.cy, dpi);
    const auto surface =
        reinterpret_cast<HSURF>(EngCreateBitmap(size, size.cx * 4, BMF_32BPP, BMF_TOPDOWN, nullptr));
    if (surface == nullptr) {
        LogError("Could not create surface.");
        return fail();
    }
    if (!EngAssociateSurface(surface, pdev->hdev, 0)) {
        EngDeleteSurface(surface);
        return fail();
    }
    pdev->hSurface = surface;
    return trace.Pointer(surface);
}

// Deliberate: an invalid instance sets no last error here, unlike in the other hooks.
extern "C" void APIENTRY DrvDisableSurface(DHPDEV dhpdev) {
    const TraceScope trace("DrvDisableSurface");
    PDEV* pdev = ValidInstance(dhpdev);
    if (pdev == nullptr || pdev->hSurface == nullptr) return;
    EngDeleteSurface(pdev->hSurface);
    pdev->hSurface = nullptr;
}

}  // namespace orvex
