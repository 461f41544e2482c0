#include "driver/device_resolution.h"

#include "driver/support/log.h"

namespace orvex {

int16_t GetDeviceResolution(const PDEV* pdev) {
    const TraceScope trace("GetDeviceResolution");
    for (const int16_t resolution : kResolutions) {
        if (pdev->devmode.pub.dmPrintQuality == resolution) return resolution;
    }
    return kDefaultResolution;
}

uint32_t PixelCount(int16_t dpi, uint32_t lengthTenthsMm) {
    const auto dotsPerMeter = static_cast<int64_t>(dpi * -0.0393700787 * 1000.0);  // negative
    return (5000u - static_cast<uint32_t>(dotsPerMeter) * lengthTenthsMm) / 10000u;
}

}  // namespace orvex
