#include "driver/config/device_mode.h"

#include <algorithm>
#include <cstring>

namespace orvex {

namespace {

constexpr size_t kHeaderSize = offsetof(DEVMODEW, dmFields);  // through dmDriverExtra

}  // namespace

size_t PrivateSize(const DEVMODEW* record) {
    return record->dmSize < kHeaderSize ? 0 : record->dmDriverExtra;
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
