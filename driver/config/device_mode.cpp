#include "driver/config/device_mode.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <type_traits>

#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr size_t kHeaderSize = offsetof(DEVMODEW, dmFields);  // up to and with dmDriverExtra

// One line of the dump: a field's name, its printf conversion, and where it stands.
struct DumpLine {
    const char* name;
    const char* conversion;
    LogArgument (*value)(const DeviceMode& record);
};

template <typename T>
LogArgument Shown(const T& field) {
    if constexpr (std::is_array_v<T>) {
        return FieldText(field);
    } else {
        return field;
    }
}

constexpr DumpLine Line(const char* name, const char* conversion, LogArgument (*value)(const DeviceMode&)) {
    return {name, conversion, value};
}

#define PUBLIC_LINE(field, conversion) \
    Line(#field, conversion, [](const DeviceMode& record) { return Shown(record.pub.field); })
#define PRIVATE_LINE(field, conversion) \
    Line(#field, conversion, [](const DeviceMode& record) { return Shown(record.priv.field); })

constexpr DumpLine kPublicLines[] = {
    PUBLIC_LINE(dmDeviceName, "%S"),  PUBLIC_LINE(dmDriverVersion, "%u"), PUBLIC_LINE(dmSize, "%u"),
    PUBLIC_LINE(dmDriverExtra, "%u"), PUBLIC_LINE(dmFields, "%lu"),       PUBLIC_LINE(dmOrientation, "%d"),
    PUBLIC_LINE(dmPaperSize, "%d"),   PUBLIC_LINE(dmPaperLength, "%d"),   PUBLIC_LINE(dmPaperWidth, "%d"),
    PUBLIC_LINE(dmCopies, "%d"),      PUBLIC_LINE(dmPrintQuality, "%d"),  PUBLIC_LINE(dmColor, "%d"),
    PUBLIC_LINE(dmYResolution, "%d"), PUBLIC_LINE(dmCollate, "%d"),
};

// Deliberate: not the order of storage, and printSetting is left out.
constexpr DumpLine kPrivateLines[] = {
    PRIVATE_LINE(signature, "%lu"),
    PRIVATE_LINE(colorAdjust, "%d"),
    PRIVATE_LINE(colorMode, "%d"),
    PRIVATE_LINE(rotate180, "%d"),
    PRIVATE_LINE(mirrorImage, "%d"),
    PRIVATE_LINE(jobCapture, "%d"),
    PRIVATE_LINE(noPrint, "%d"),
    PRIVATE_LINE(stitched, "%d"),
    PRIVATE_LINE(labelName, "%s"),
    PRIVATE_LINE(usePrivateCopies, "%d"),
    PRIVATE_LINE(copies, "%d"),
    PRIVATE_LINE(chunksize, "%d"),
    PRIVATE_LINE(chunkActive, "%d"),
    PRIVATE_LINE(phHOffset, "%d"),
    PRIVATE_LINE(phVOffset, "%d"),
    PRIVATE_LINE(alignment, "%d"),
    PRIVATE_LINE(feedSide, "%d"),
    PRIVATE_LINE(overspray, "%d"),
    PRIVATE_LINE(kws, "%d"),
    PRIVATE_LINE(kws_fullwidth, "%d"),
    PRIVATE_LINE(purgeBar, "%d"),
    PRIVATE_LINE(purgeDots, "%d"),
    PRIVATE_LINE(purgeGap, "%d"),
    PRIVATE_LINE(purgeFreq, "%d"),
    PRIVATE_LINE(dmPaperSize, "%d"),
    PRIVATE_LINE(units, "%d"),
    PRIVATE_LINE(width_string, "%s"),
    PRIVATE_LINE(length_string, "%s"),
    PRIVATE_LINE(colorProfile, "%S"),
    PRIVATE_LINE(adj_colortone, "%d"),
    PRIVATE_LINE(adj_brightness, "%d"),
    PRIVATE_LINE(adj_saturation, "%d"),
    PRIVATE_LINE(adj_cyan, "%d"),
    PRIVATE_LINE(adj_magenta, "%d"),
    PRIVATE_LINE(adj_yellow, "%d"),
    PRIVATE_LINE(adj_black, "%d"),
};

// The two halves of the dump.
struct DumpSection {
    const char* opening;
    const char* closing;
    int nameColumn;  // characters that a field's name is padded to
    const DumpLine* lines;
    size_t count;
};

constexpr DumpSection kSections[] = {
    {"<Public-DevMode>", "</Public-DevMode>", 19, kPublicLines, std::size(kPublicLines)},
    {"<Private-DevMode>", "</Private-DevMode>", 28, kPrivateLines, std::size(kPrivateLines)},
};

void DumpSectionLines(const DumpSection& section, const DeviceMode& record) {
    LogTrace(section.opening);
    for (size_t i = 0; i < section.count; ++i) {
        const DumpLine& line = section.lines[i];
        char format[16];
        snprintf(format, sizeof format, "%%-%ds= %s", section.nameColumn, line.conversion);
        LogTrace(format, line.name, line.value(record));
    }
    LogTrace(section.closing);
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
    if ((logMask & kLogMaskTrace) == 0) return;  // every line tests it too: it may be cleared at any moment
    LogTrace("pdm:%x priv:%x", static_cast<const void*>(record), PrivatePart(record));
    const DeviceMode values = LoadDevMode(record);
    for (const DumpSection& section : kSections) DumpSectionLines(section, values);
}

}  // namespace orvex
