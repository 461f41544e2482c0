#include "driver/config/page_layout_input.h"

namespace orvex {

PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height) {
    const PrivateDevMode& settings = mode.priv;
    return {.bitmapWidth = width,
            .bitmapHeight = height,
            .dpi = dpi,
            .landscape = mode.pub.dmOrientation == DMORIENT_LANDSCAPE,
            .kws = settings.kws != 0,
            .kwsFullWidth = settings.kws_fullwidth != 0,
            .alignment = settings.alignment,
            .purgeBar = settings.purgeBar,
            .purgeDots = static_cast<uint16_t>(settings.purgeDots),
            .purgeGap = static_cast<uint16_t>(settings.purgeGap),
            .phHOffset = settings.phHOffset};
}

}  // namespace orvex
