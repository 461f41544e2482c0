// The fields of the device mode, a row each: where a field is, how the diagnostic log shows it, and which
// values it may have. The dump, the validation and the options of orvexprint walk these rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "driver/color/row_conversion.h"
#include "driver/config/device_mode.h"

namespace orvex {

// The values that a number may have, and the one that replaces any other: those of a list when there is one,
// otherwise those of a range.
struct ValidValues {
    int32_t least = INT32_MIN;
    int32_t most = INT32_MAX;
    int32_t replacement = 0;
    const int16_t* list = nullptr;
    size_t listed = 0;
};

inline constexpr ValidValues kAnyValue = {};
inline constexpr ValidValues kFlag = {0, 1, 0};
inline constexpr ValidValues kAdjustment = {-100, 100, 0};

constexpr ValidValues Range(int32_t least, int32_t most, int32_t replacement) {
    return {least, most, replacement};
}
constexpr ValidValues Always(int32_t value) {
    return {value, value, value};
}
template <size_t N>
constexpr ValidValues OneOf(const int16_t (&values)[N], int32_t replacement) {
    return {INT32_MIN, INT32_MAX, replacement, values, N};
}

enum class FieldType : uint8_t { kSigned, kUnsigned, kText, kWideText };

struct DeviceModeField {
    const char* name;
    size_t offset;  // bytes into a DeviceMode
    size_t size;    // bytes
    FieldType type;
    const char* format;  // the conversion that the dump shows it with; null leaves it out
    ValidValues values = kAnyValue;
};

template <typename T>
constexpr FieldType FieldTypeOf() {
    if constexpr (std::is_array_v<T>) {
        return sizeof(std::remove_extent_t<T>) == 1 ? FieldType::kText : FieldType::kWideText;
    } else {
        return std::is_signed_v<T> ? FieldType::kSigned : FieldType::kUnsigned;
    }
}

template <typename T>
constexpr DeviceModeField Field(const char* name, size_t offset, const char* format,
                                ValidValues values = kAnyValue) {
    return {name, offset, sizeof(T), FieldTypeOf<T>(), format, values};
}

#define PUBLIC_FIELD(field, ...) \
    Field<decltype(DEVMODEW::field)>(#field, offsetof(DEVMODEW, field), __VA_ARGS__)
#define PRIVATE_FIELD(field, ...)                                                                      \
    Field<decltype(PrivateDevMode::field)>(#field, sizeof(DEVMODEW) + offsetof(PrivateDevMode, field), \
                                           __VA_ARGS__)

inline constexpr int16_t kPurgeDots[] = {1, 5, 10};
inline constexpr int16_t kPurgeGaps[] = {5, 10, 15};
inline constexpr int16_t kPurgeFrequencies[] = {0, 1, 2, 10, 20, 50};

// clang-format off

// The paper's size; tenths of a millimeter.
inline constexpr DeviceModeField kPaperLength = PUBLIC_FIELD(dmPaperLength, "%d", Range(254, 9017, kDefaultPaperLength));
inline constexpr DeviceModeField kPaperWidth = PUBLIC_FIELD(dmPaperWidth, "%d", Range(254, 2970, kDefaultPaperWidth));

// Rows in the order of the dump.
inline constexpr DeviceModeField kPublicFields[] = {
    PUBLIC_FIELD(dmDeviceName, "%S"),
    PUBLIC_FIELD(dmDriverVersion, "%u"),
    PUBLIC_FIELD(dmSize, "%u"),
    PUBLIC_FIELD(dmDriverExtra, "%u"),
    PUBLIC_FIELD(dmFields, "%lu"),
    PUBLIC_FIELD(dmOrientation, "%d", Range(DMORIENT_PORTRAIT, DMORIENT_LANDSCAPE, DMORIENT_PORTRAIT)),
    PUBLIC_FIELD(dmPaperSize, "%d"),
    kPaperLength,
    kPaperWidth,
    PUBLIC_FIELD(dmCopies, "%d", Range(1, 10000, 1)),
    PUBLIC_FIELD(dmPrintQuality, "%d", OneOf(kResolutions, kDefaultResolution)),
    PUBLIC_FIELD(dmColor, "%d"),
    PUBLIC_FIELD(dmYResolution, "%d"),
    PUBLIC_FIELD(dmCollate, "%d"),
    PUBLIC_FIELD(dmScale, nullptr, Always(100)),
    PUBLIC_FIELD(dmDuplex, nullptr, Always(DMDUP_SIMPLEX)),
};

// Rows in the order of the dump. Deliberate: it is not the order of storage, and printSetting is not shown.
inline constexpr DeviceModeField kPrivateFields[] = {
    PRIVATE_FIELD(signature, "%lu"),
    PRIVATE_FIELD(colorAdjust, "%d", kFlag),
    PRIVATE_FIELD(colorMode, "%d", Range(kColorModeColor, kColorModeBlackGray, kColorModeColor)),
    PRIVATE_FIELD(rotate180, "%d", kFlag),
    PRIVATE_FIELD(mirrorImage, "%d", kFlag),
    PRIVATE_FIELD(jobCapture, "%d", kFlag),
    PRIVATE_FIELD(noPrint, "%d", kFlag),
    PRIVATE_FIELD(stitched, "%d", kFlag),
    PRIVATE_FIELD(labelName, "%s"),
    PRIVATE_FIELD(usePrivateCopies, "%d", kFlag),
    PRIVATE_FIELD(copies, "%d", Range(1, 10000, 1)),
    PRIVATE_FIELD(chunksize, "%d", Range(30, 10000, 500)),
    PRIVATE_FIELD(chunkActive, "%d", kFlag),
    PRIVATE_FIELD(phHOffset, "%d", Range(-1000, 1000, 20)),
    PRIVATE_FIELD(phVOffset, "%d", Range(-250, 250, 0)),
    PRIVATE_FIELD(alignment, "%d", Range(kAlignRight, kAlignLeft, kAlignRight)),
    PRIVATE_FIELD(feedSide, "%d", kFlag),
    PRIVATE_FIELD(overspray, "%d", Range(0, 3, 0)),
    PRIVATE_FIELD(kws, "%d", kFlag),
    PRIVATE_FIELD(kws_fullwidth, "%d", kFlag),
    // Deliberate: 0, no bar, is valid, but any wrong value becomes the leading bar.
    PRIVATE_FIELD(purgeBar, "%d", Range(0, 2, 1)),
    PRIVATE_FIELD(purgeDots, "%d", OneOf(kPurgeDots, 1)),
    PRIVATE_FIELD(purgeGap, "%d", OneOf(kPurgeGaps, 5)),
    PRIVATE_FIELD(purgeFreq, "%d", OneOf(kPurgeFrequencies, 0)),
    PRIVATE_FIELD(dmPaperSize, "%d"),
    PRIVATE_FIELD(units, "%d"),
    PRIVATE_FIELD(width_string, "%s"),
    PRIVATE_FIELD(length_string, "%s"),
    PRIVATE_FIELD(colorProfile, "%S"),
    PRIVATE_FIELD(adj_colortone, "%d", kAdjustment),
    PRIVATE_FIELD(adj_brightness, "%d", kAdjustment),
    PRIVATE_FIELD(adj_saturation, "%d", kAdjustment),
    PRIVATE_FIELD(adj_cyan, "%d", kAdjustment),
    PRIVATE_FIELD(adj_magenta, "%d", kAdjustment),
    PRIVATE_FIELD(adj_yellow, "%d", kAdjustment),
    PRIVATE_FIELD(adj_black, "%d", kAdjustment),
    PRIVATE_FIELD(printSetting, nullptr, Range(0, 3, 1)),
};

// clang-format on
#undef PUBLIC_FIELD
#undef PRIVATE_FIELD

// Replaces the number in a field that must not have it. Texts and unsigned numbers may have any value.
void ForceValid(DeviceMode* record, const DeviceModeField& field);

// Writes the whole record to the diagnostic log, at Trace; a record whose dmSize is not 220 gives one line at
// Info, a null record none.
void DumpDevMode(const DEVMODEW* record);

// Writes the caption and then the record.
void DumpDevMode(const char* caption, const DEVMODEW* record);

}  // namespace orvex
