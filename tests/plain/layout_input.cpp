#include "tests/plain/layout_input.h"

namespace orvex::plain {

int16_t Resolution(const DeviceMode& mode) {
    return mode.pub.dmPrintQuality == 600 ? 600 : 300;
}

PageLayoutInput LayoutInput(const DeviceMode& mode, int32_t width, int32_t height) {
    const PrivateDevMode& settings = mode.priv;
    PageLayoutInput input = {};
    input.bitmapWidth = width;
    input.bitmapHeight = height;
    input.dpi = Resolution(mode);
    input.landscape = mode.pub.dmOrientation == 2;
    input.kws = settings.kws != 0;
    input.kwsFullWidth = settings.kws_fullwidth != 0;
    input.alignment = settings.alignment;
    input.purgeBar = settings.purgeBar;
    input.purgeDots = static_cast<uint16_t>(settings.purgeDots & 0xFFFF);
    input.purgeGap = static_cast<uint16_t>(settings.purgeGap & 0xFFFF);
    input.phHOffset = settings.phHOffset;
    return input;
}

}  // namespace orvex::plain
