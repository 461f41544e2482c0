#include "driver/config/device_mode.h"

#include <algorithm>
#include <cstring>

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

size_t PrivateSize(const DEVMODEW* record) {
    constexpr size_t kThroughDriverExtra = offsetof(DEVMODEW, dmFields);
    return record->dmSize < kThroughDriverExtra ? 0 : record->dmDriverExtra;
}

const void* PrivatePart(const DEVMODEW* record) {
    return reinterpret_cast<const BYTE*>(record) + record->dmSize;
}

DeviceMode LoadDevMode(const DEVMODEW* record) {
    DeviceMode values = {};
    memcpy(&values.pub, record, std::min<size_t>(record->dmSize, sizeof values.pub));
    memcpy(&values.priv, PrivatePart(record), std::min(PrivateSize(record), sizeof values.priv));
    return values;
}

void StoreDevMode(DEVMODEW* record, const DeviceMode& values) {
    memcpy(const_cast<void*>(PrivatePart(record)), &values.priv,
           std::min(PrivateSize(record), sizeof values.priv));
    memcpy(static_cast<void*>(record), &values.pub, std::min<size_t>(record->dmSize, sizeof values.pub));
}

}  // namespace orvex
