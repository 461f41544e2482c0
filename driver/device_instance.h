// The device instance: what DrvEnablePDEV hands to the graphics engine and every later hook gets back.
#pragma once

#include <cstdint>

#include "driver/config/device_mode.h"
#include "platform/windows.h"

namespace orvex {

constexpr uint32_t kPdevSignature = 0x534C5144;  // "DQLS" in memory

enum : uint32_t {
    PDEV_IN_JOB = 0x4,         // a job has been started on this device
    PDEV_NO_MORE_PAGES = 0x8,  // DrvStartPage refuses pages; defined by the system, set by no hook
    PDEV_RESET = 0x100000,     // made by DrvResetPDEV from an earlier instance
};

constexpr int32_t kNoCarriedCopies = -1;

// Lives on the local heap, zero-filled, from DrvEnablePDEV to DrvDisablePDEV. The system defines all of its
// fields; those marked "unused" are only filled, or carried from instance to instance by DrvResetPDEV.
struct PDEV {
    uint32_t signature;
    DeviceMode devmode;  // the job's settings; validated only after a merge, see MergeDevMode()
    HMODULE hModule;     // unused
    HANDLE hPrinter;
    uint64_t carryWord1;  // unused
    uint64_t carryWord2;  // unused
    uint64_t dwReserved;  // unused
    HDEV hdev;
    HSURF hSurface;  // the page bitmap, or null
    uint32_t flags;
    int32_t cCopies;        // copy count carried across a reset; kNoCarriedCopies, since no hook sets one
    int16_t orientation;    // dmOrientation; unused
    uint32_t dwPageWidth;   // 0.1 mm, after orientation
    uint32_t dwPageLength;  // 0.1 mm, after orientation
    uint32_t pageCount;     // pages sent in the job
    uint32_t signatureTail;
    uint32_t yCoord;  // unused
};

// Returns the instance of a handle, or null unless it has its signature at both ends.
PDEV* ValidInstance(DHPDEV dhpdev);

// Return the same, also for a surface, which may be null; set ERROR_INVALID_PARAMETER without an instance.
PDEV* RequireInstance(DHPDEV dhpdev);
PDEV* RequireInstance(const SURFOBJ* surface);

// Asks the spooler for the driver's name. The system defines it for each hook of a job; nothing uses it.
void AskForDriverName(const PDEV& pdev);

}  // namespace orvex
