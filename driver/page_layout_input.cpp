#include "driver/page_layout_input.h"

namespace orvex {

PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height) {
    PageLayoutInput input = {};
    input.bitmapWidth = width;
    input.bitmapHeight = height;
    input.dpi = dpi;
    input.landscape = mode.pub.dmOrientation == DMORIENT_LANDSCAPE;
    input.kws = mode.priv.kws != 0;
    input.kwsFullWidth = mode.priv.kws_fullwidth != 0;
    input.alignment = mode.priv.alignment;
    input.purgeBar = mode.priv.purgeBar;
    input.purgeDots = static_cast<uint16_t>(mode.priv.purgeDots);
    input.purgeGap = static_cast<uint16_t>(mode.priv.purgeGap);
    input.phHOffset = mode.priv.phHOffset;
    return input;
}

}  // namespace orvex
