#include "driver/device_instance.h"

#include "driver/config/device_mode_defaults.h"
#include "driver/config/device_mode_merge.h"
#include "driver/config/label_length.h"
#include "driver/config/label_sizes.h"
#include "driver/device_capabilities.h"
#include "driver/job_state.h"
#include "driver/support/log.h"
#include "driver/support/module.h"

namespace orvex {

PDEV* ValidInstance(DHPDEV dhpdev) {
    PDEV* pdev = reinterpret_cast<PDEV*>(dhpdev);
    if (pdev == nullptr) return nullptr;
    return pdev->signature == kPdevSignature && pdev->signatureTail == kPdevSignature ? pdev : nullptr;
}

PDEV* RequireInstance(DHPDEV dhpdev) {
    PDEV* pdev = ValidInstance(dhpdev);
    if (pdev == nullptr) SetLastError(ERROR_INVALID_PARAMETER);
    return pdev;
}

PDEV* RequireInstance(const SURFOBJ* surface) {
    return RequireInstance(surface != nullptr ? surface->dhpdev : nullptr);
}

int16_t GetDeviceResolution(const PDEV* pdev) {
    const TraceScope trace("GetDeviceResolution");
    for (const int16_t resolution : kResolutions) {
        if (pdev->devmode.pub.dmPrintQuality == resolution) return resolution;
    }
    return kDefaultResolution;
}

uint32_t PixelCount(int16_t dpi, uint32_t lengthTenthsMm) {
    const auto dotsPerMetre = static_cast<int64_t>(dpi * -0.0393700787 * 1000.0);  // negative
    return (5000u - static_cast<uint32_t>(dotsPerMetre) * lengthTenthsMm) / 10000u;
}

namespace {

struct LocalFreeDeleter {
    void operator()(PDEV* pdev) const { LocalFree(pdev); }
};
using OwnedInstance = std::unique_ptr<PDEV, LocalFreeDeleter>;

// A public paper size that is a label of the printer's list, but not the one that the private part describes,
// has its width and length looked up in the list. The last entry of that number wins.
void TakeCustomLabelSize(PDEV* pdev) {
    DEVMODEW& pub = pdev->devmode.pub;
    if (pub.dmPaperSize < kPaperDefault || pub.dmPaperSize == pdev->devmode.priv.dmPaperSize) return;
    const LabelList list(pdev->hPrinter);
    const LabelSize* label = list.LastOfNumber(pub.dmPaperSize);
    if (label == nullptr) return;
    SetPaperSize(&pub, FieldText(label->width), FieldText(label->length), label->units);
}

BOOL FillPDevData(PDEV* pdev, DEVMODEW* pdm, const WCHAR* deviceName) {
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
    return trace.Bool(TRUE);
}

// Carries one field of the old instance to the new one; a change is logged.
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

extern "C" DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW* pdm, LPWSTR pwszLogAddress, ULONG cPat,
                                         HSURF* phsurfPatterns, ULONG cjCaps, ULONG* pdevcaps,
                                         ULONG cjDevInfo, DEVINFO* pdi, HDEV hdev, LPWSTR pwszDeviceName,
                                         HANDLE hDriver) {
    (void)pwszLogAddress, (void)hdev;
    const TraceScope trace("DrvEnablePDEV");
    const auto fail = [&trace] { return reinterpret_cast<DHPDEV>(trace.Pointer<PDEV>(nullptr)); };

    OwnedInstance pdev(static_cast<PDEV*>(LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, sizeof(PDEV))));
    if (!pdev) return fail();
    pdev->cCopies = kNoCarriedCopies;
    pdev->hPrinter = hDriver;
    pdev->hModule = g_hModule;
    if (pdev->hModule == nullptr) return fail();
    if (!FillPDevData(pdev.get(), pdm, pwszDeviceName)) return fail();
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
    // The engine may still write when the job is ended later. Without an instance the output callback refuses
    // those bytes.
    if (g_pCurrentPdev == pdev) g_pCurrentPdev = nullptr;
    LocalFree(pdev);
}

// The page size is deliberately the old instance's: a reset in the middle of a job never changes the page
// geometry.
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

}  // namespace orvex
