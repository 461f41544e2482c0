// The device instance: what DrvEnablePDEV hands to the graphics engine and every later hook gets back.
#pragma once

#include <cstdint>

#include "driver/config/device_mode.h"
#include "platform/windows.h"

namespace orvex {

constexpr uint32_t kPdevSignature = 0x534C5144;  // "DQLS" in memory

enum : uint32_t {
    PDEV_IN_JOB = 0x4,         // a job has been started on this device
    PDEV_NO_MORE_PAGES = 0x8,  // DrvStartPage refuses pages while it is set; nothing here sets it
    PDEV_RESET = 0x100000,     // made by DrvResetPDEV from an earlier instance
};

constexpr int32_t kNoCarriedCopies = -1;

// Lives on the local heap, zero-filled, from DrvEnablePDEV to DrvDisablePDEV.
struct PDEV {
    uint32_t signature;
    DeviceMode devmode;  // the job's settings; validated only after a merge, see MergeDevMode()
    HMODULE hModule;
    HANDLE hPrinter;
    uint64_t carryWord1;
    uint64_t carryWord2;
    uint64_t dwReserved;
    HDEV hdev;
    HSURF hSurface;  // the page bitmap, or null
    uint32_t flags;
    int32_t cCopies;        // copy count carried across a reset; kNoCarriedCopies = none
    int16_t orientation;    // dmOrientation
    uint32_t dwPageWidth;   // 0.1 mm, after orientation
    uint32_t dwPageLength;  // 0.1 mm, after orientation
    uint32_t pageCount;     // pages sent in the job
    uint32_t signatureTail;
    uint32_t yCoord;
};

// The instance behind a handle, or null when there is none or it carries no signature at one of its ends.
PDEV* ValidInstance(DHPDEV dhpdev);

// The same for a hook that fails on it: sets the last error to ERROR_INVALID_PARAMETER when it returns null.
PDEV* RequireInstance(DHPDEV dhpdev);

// The instance of a surface; a null surface has none.
PDEV* RequireInstance(const SURFOBJ* surface);

// The device resolution in dots per inch: dmPrintQuality when it is 600 or 300, else 300.
int16_t GetDeviceResolution(const PDEV* pdev);

// A length in 0.1 mm as a count of pixels at `dpi`, rounded to nearest: the page bitmap and GDIINFO agree on
// it.
uint32_t PixelCount(int16_t dpi, uint32_t lengthTenthsMm);

}  // namespace orvex
