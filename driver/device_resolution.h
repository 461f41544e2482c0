// The device resolution, and lengths in its pixels.
#pragma once

#include <cstdint>

#include "driver/device_instance.h"

namespace orvex {

// Returns the device resolution in dots per inch: dmPrintQuality if it is 600 or 300, otherwise 300.
int16_t GetDeviceResolution(const PDEV* pdev);

// Converts a length in 0.1 mm to pixels at `dpi`, rounded to nearest. The page bitmap and GDIINFO both use
// it, so they agree.
uint32_t PixelCount(int16_t dpi, uint32_t lengthTenthsMm);

}  // namespace orvex
