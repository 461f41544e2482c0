#include "driver/device_capabilities.h"

#include <algorithm>
#include <cstring>

#include "driver/support/lengths.h"
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

void FillPDevCaps(const PDEV* pdev, ULONG cjCaps, GDIINFO* pGdiInfo) {
    const TraceScope trace("FillPDevCaps");
    const int16_t dpi = GetDeviceResolution(pdev);
    const auto dots = static_cast<ULONG>(dpi);

    GDIINFO caps = {};
    caps.ulVersion = 0x401;
    caps.ulTechnology = DT_RASPRINTER;
    caps.ulHorzSize = pdev->dwPageWidth / kTenthsMmPerMm;
    caps.ulVertSize = pdev->dwPageLength / kTenthsMmPerMm;
    caps.ulHorzRes = PixelCount(dpi, pdev->dwPageWidth);
    caps.ulVertRes = PixelCount(dpi, pdev->dwPageLength);
    caps.cBitsPixel = 24;
    caps.cPlanes = 1;
    caps.ulNumColors = 8;
    caps.ulLogPixelsX = dots;
    caps.ulLogPixelsY = dots;
    caps.flTextCaps = TC_RA_ABLE;
    caps.ulAspectX = 100;
    caps.ulAspectY = 100;
    caps.ulAspectXY = 141;
    caps.xStyleStep = 1;
    caps.yStyleStep = 1;
    caps.denStyleStep = dpi / 25;
    caps.szlPhysSize.cx = static_cast<LONG>(caps.ulHorzRes);
    caps.szlPhysSize.cy = static_cast<LONG>(caps.ulVertRes);
    caps.ulDevicePelsDPI = dots;
    caps.ulPrimaryOrder = PRIMARY_ORDER_ABC;
    caps.ulHTPatternSize = HT_PATSIZE_2x2;
    caps.ulHTOutputFormat = HT_FORMAT_24BPP;
    caps.flHTFlags = HT_FLAG_HAS_BLACK_DYE;
    memcpy(pGdiInfo, &caps, std::min<size_t>(cjCaps, sizeof caps));
}

BOOL FillPDevInfo(const PDEV* /*pdev*/, ULONG cjDevInfo, DEVINFO* pDevInfo) {
    const TraceScope trace("FillPDevInfo");
    DEVINFO info = {};
    info.flGraphicsCaps = GCAPS_HALFTONE | GCAPS_COLOR_DITHER;
    info.iDitherFormat = BMF_32BPP;
    info.hpalDefault = EngCreatePalette(PAL_RGB, 0, nullptr, 0, 0, 0);
    if (info.hpalDefault == nullptr) return trace.Bool(FALSE);
    memcpy(pDevInfo, &info, std::min<size_t>(cjDevInfo, sizeof info));
    return trace.Bool(TRUE);
}

}  // namespace orvex
