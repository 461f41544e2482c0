// What the device tells the graphics engine about itself: a 24-bit color raster printer at 300 or 600 dpi.
#pragma once

#include "driver/device_instance.h"
#include "platform/windows.h"

namespace orvex {

// Copies the device's GDIINFO, `cjCaps` bytes at most.
void FillPDevCaps(const PDEV* pdev, ULONG cjCaps, GDIINFO* pGdiInfo);

// Creates a palette and copies the device's DEVINFO with it, `cjDevInfo` bytes at most. Returns FALSE, and
// copies nothing, if the palette can't be created. The instance is there because the system defines it, but
// is not used.
BOOL FillPDevInfo(const PDEV* pdev, ULONG cjDevInfo, DEVINFO* pDevInfo);

}  // namespace orvex
