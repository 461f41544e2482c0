#include "driver/config/device_mode.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "driver/config/device_mode_fields.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr size_t kHeaderSize = offsetof(DEVMODEW, dmFields);  // through dmDriverExtra

LogArgument Shown(const DeviceMode& record, const DeviceModeField& field) {
    const BYTE* at = reinterpret_cast<const BYTE*>(&record) + field.offset;
    switch (field.type) {
        case FieldType::kText: {
            const char* text = reinterpret_cast<const char*>(at);
            return std::string_view(text, TextLength(text, field.size));
        }
        case FieldType::kWideText: {
            const WCHAR* text = reinterpret_cast<const WCHAR*>(at);
            return WideView{text, TextLength(text, field.size / sizeof(WCHAR))};
        }
        default:
            return ReadNumber(record, field);
    }
}

// Writes the rows that are shown, each name in a column of `nameWidth` characters.
template <size_t N>
void DumpFields(const DeviceModeField (&fields)[N], int nameWidth, const DeviceMode& record) {
    for (const DeviceModeField& field : fields) {
        if (field.format == nullptr) continue;
        char format[16];
        snprintf(format, sizeof format, "%%-%ds= %s", nameWidth, field.format);
        LogTrace(format, field.name, Shown(record, field));
    }
}

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

void DumpDevMode(const DEVMODEW* record) {
    if (record == nullptr) return;
    if (record->dmSize != sizeof(DEVMODEW)) {
        LogInfo("DevMode is invalid. The values of sizeof(DEVMODE) and dmSize do not match.");
        return;
    }
    if ((logMask & kLogMaskTrace) == 0)
        return;  // every line tests it again, since it may be cleared at any moment
    LogTrace("pdm:%x priv:%x", static_cast<const void*>(record), PrivatePart(record));
    const DeviceMode values = LoadDevMode(record);
    LogTrace("<Public-DevMode>");
    DumpFields(kPublicFields, 19, values);
    LogTrace("</Public-DevMode>");
    LogTrace("<Private-DevMode>");
    DumpFields(kPrivateFields, 28, values);
    LogTrace("</Private-DevMode>");
}

}  // namespace orvex
