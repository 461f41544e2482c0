// A device mode to start a test from.
#pragma once

#include <string_view>

#include "driver/config/device_mode.h"

namespace orvex {

// Returns a valid device mode with that profile: portrait, 300 dpi, 30 x 40 mm, centered, no print-head
// offset.
inline DeviceMode ValidDeviceMode(std::string_view profile) {
    DeviceMode mode = {};
    mode.pub.dmSpecVersion = mode.pub.dmDriverVersion = kDevModeVersion;
    mode.pub.dmSize = sizeof mode.pub;
    mode.pub.dmDriverExtra = sizeof mode.priv;
    mode.pub.dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_COPIES |
                        DM_PRINTQUALITY | DM_COLLATE | DM_FORMNAME;
    mode.pub.dmOrientation = DMORIENT_PORTRAIT;
    mode.pub.dmPaperSize = kPaperCustom;
    mode.pub.dmPaperWidth = 300;
    mode.pub.dmPaperLength = 400;
    mode.pub.dmPrintQuality = 300;
    mode.pub.dmCopies = 1;
    mode.priv.signature = kPrivateSignature;
    mode.priv.printSetting = 1;
    mode.priv.copies = 1;
    mode.priv.chunksize = 500;
    mode.priv.alignment = 1;
    mode.priv.purgeDots = 1;
    mode.priv.purgeGap = 5;
    mode.priv.dmPaperSize = kPaperDefault;
    mode.priv.units = kUnitsInches;
    for (size_t i = 0; i < profile.size(); ++i) mode.priv.colorProfile[i] = static_cast<WCHAR>(profile[i]);
    return mode;
}

}  // namespace orvex
