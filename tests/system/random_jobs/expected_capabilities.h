// The capabilities that a device reports, field by field.
#pragma once

#include "platform/windows.h"
#include "tests/plain/driver/driver_model.h"
#include "tests/plain/layout_input.h"

namespace orvex {

inline GDIINFO ExpectedCapabilities(const plain::ModelDevice& device) {
    const int16_t dpi = plain::Resolution(device.mode);
    const uint32_t dots = static_cast<uint32_t>(dpi);
    const uint32_t across = plain::PixelsOf(dpi, device.pageWidth);
    const uint32_t down = plain::PixelsOf(dpi, device.pageLength);
    GDIINFO info = {};
    info.ulVersion = 0x401;
    info.ulTechnology = 2;
    info.ulHorzSize = device.pageWidth / 10;
    info.ulVertSize = device.pageLength / 10;
    info.ulHorzRes = across;
    info.ulVertRes = down;
    info.cBitsPixel = 24;
    info.cPlanes = 1;
    info.ulNumColors = 8;
    info.ulLogPixelsX = info.ulLogPixelsY = info.ulDevicePelsDPI = dots;
    info.flTextCaps = 0x2000;
    info.ulAspectX = info.ulAspectY = 100;
    info.ulAspectXY = 141;
    info.xStyleStep = info.yStyleStep = 1;
    info.denStyleStep = static_cast<LONG>(dots / 25);
    info.szlPhysSize = {static_cast<LONG>(across), static_cast<LONG>(down)};
    info.ulHTOutputFormat = 6;
    info.flHTFlags = 2;
    return info;
}

}  // namespace orvex
