// The device as the graphics engine is told about it: a 24-bit color raster printer at 300 or 600 dpi.
#pragma once

#include <cstdint>

#include "driver/device_instance.h"
#include "platform/windows.h"

namespace orvex {

// Returns the device resolution in dots per inch: dmPrintQuality if it is 600 or 300, otherwise 300.
int16_t GetDeviceResolution(const PDEV* pdev);

// Converts a length in 0.1 mm to pixels at `dpi`, rounded to nearest, for the page bitmap and GDIINFO alike.
uint32_t PixelCount(int16_t dpi, uint32_t lengthTenthsMm);

// Copies the device's GDIINFO, `cjCaps` bytes at most.
void FillPDevCaps(const PDEV* pdev, ULONG cjCaps, GDIINFO* pGdiInfo);

// Creates a palette and copies the device's DEVINFO with it, `cjDevInfo` bytes at most. Returns FALSE, and
// copies nothing, if the palette can't be created. `pdev` is defined by the system, but not used.
BOOL FillPDevInfo(const PDEV* pdev, ULONG cjDevInfo, DEVINFO* pDevInfo);

}  // namespace orvex
