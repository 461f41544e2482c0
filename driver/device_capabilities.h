// What the device is to the graphics engine: a 24-bit colour raster printer at 300 or 600 dpi.
#pragma once

#include "driver/device_instance.h"
#include "platform/windows.h"

namespace orvex {

// Copies the device's GDIINFO, `cjCaps` bytes at most.
void FillPDevCaps(const PDEV* pdev, ULONG cjCaps, GDIINFO* pGdiInfo);

// Copies the device's DEVINFO, `cjDevInfo` bytes at most, with a palette that it makes. FALSE, and nothing
// copied, when the palette can't be made.
BOOL FillPDevInfo(const PDEV* pdev, ULONG cjDevInfo, DEVINFO* pDevInfo);

}  // namespace orvex
