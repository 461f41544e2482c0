#include "driver/config/device_mode.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "driver/support/log.h"

namespace orvex {

namespace {

static_assert(
    [] {
        size_t bytes = 7;  // reserved
        for (const DeviceModeField& field : kPrivateFields) bytes += field.size;
        return bytes;
    }() == sizeof(PrivateDevMode),
    "a field has no row");

LogArgument Shown(const DeviceMode& record, const DeviceModeField& field) {
    const BYTE* at = reinterpret_cast<const BYTE*>(&record) + field.offset;
    if (field.type == FieldType::kText) {
        const char* text = reinterpret_cast<const char*>(at);
        return std::string_view(text, TextLength(text, field.size));
    }
    if (field.type == FieldType::kWideText) {
        const WCHAR* text = reinterpret_cast<const WCHAR*>(at);
        return WideView(text, TextLength(text, field.size / sizeof(WCHAR)));
    }
    return ReadNumber(record, field);
}

// Writes the rows that are shown, each name in a column of `nameWidth` characters.
template <size_t N>
void DumpFields(const DeviceModeField (&fields)[N], int nameWidth, const DeviceMode& record) {
    for (const DeviceModeField& field : fields) {
        if (field.format == nullptr) continue;
        char format[11];  // "%-28s= %lu"
        snprintf(format, sizeof format, "%%-%ds= %s", nameWidth, field.format);
        LogTrace(format, field.name, Shown(record, field));
    }
}

}  // namespace

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

int64_t ReadNumber(const DeviceMode& record, const DeviceModeField& field) {
    uint32_t bits = {};
    memcpy(&bits, reinterpret_cast<const BYTE*>(&record) + field.offset, field.size);
    if (field.type == FieldType::kUnsigned) return bits;
    const int unused = 32 - static_cast<int>(field.size) * 8;
    return static_cast<int32_t>(bits << unused) >> unused;
}

bool IsValid(const ValidValues& values, int32_t number) {
    if (values.list == nullptr) return number >= values.least && number <= values.most;
    const int16_t* end = values.list + values.listed;
    return std::find(values.list, end, number) != end;
}

void ForceValid(DeviceMode* record, const DeviceModeField& field) {
    if (field.type != FieldType::kSigned) return;
    if (IsValid(field.values, static_cast<int32_t>(ReadNumber(*record, field)))) return;
    memcpy(reinterpret_cast<BYTE*>(record) + field.offset, &field.values.replacement, field.size);
}

void DumpDevMode(const DEVMODEW* record) {
    if (record == nullptr) return;
    if (record->dmSize != sizeof(DEVMODEW)) {
        LogInfo("DevMode is invalid. The values of sizeof(DEVMODE) and dmSize do not match.");
        return;
    }
    LogTrace("pdm:%x priv:%x", static_cast<const void*>(record), PrivatePart(record));
    const DeviceMode values = LoadDevMode(record);
    LogTrace("<Public-DevMode>");
    DumpFields(kPublicFields, 19, values);
    LogTrace("</Public-DevMode>");
    LogTrace("<Private-DevMode>");
    DumpFields(kPrivateFields, 28, values);
    LogTrace("</Private-DevMode>");
}

void DumpDevMode(const char* caption, const DEVMODEW* record) {
    LogTrace(caption);
    DumpDevMode(record);
}

}  // namespace orvex
