// The device mode: every setting of a job. The system's DEVMODEW (220 bytes) is followed at once by the
// driver's private extension (696 bytes). The record is exchanged with the spooler, the printer's user
// interface and applications, so its layout is fixed to the byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "driver/color/row_conversion.h"
#include "driver/render/page_layout.h"
#include "platform/windows.h"

namespace orvex {

constexpr uint16_t kDevModeVersion = 0x0401;  // dmSpecVersion and dmDriverVersion that the driver writes
constexpr uint32_t kPrivateSignature = 0x18284000;
constexpr size_t kMaxProfileName = 260;  // characters of colorProfile, terminator included

constexpr int16_t kPaperCustom = 256;      // DMPAPER_USER: a free custom size
constexpr int16_t kPaperDefault = 257;     // the built-in default label
constexpr int16_t kPaperFirstLabel = 258;  // labels of the printer's own list begin here

// Paper size that replaces one out of range; tenths of a millimeter.
constexpr int16_t kDefaultPaperLength = 2159;
constexpr int16_t kDefaultPaperWidth = 2794;

// Device resolutions in dots per inch; the default replaces any other value.
inline constexpr int16_t kResolutions[] = {300, 600};
constexpr int16_t kDefaultResolution = 300;

enum : uint32_t { kUnitsMillimeters = 0, kUnitsInches = 1 };  // any other value: tenths of a millimeter

// The private part in the order of storage. Flags are 0 or 1. A text ends at a zero or fills its field.
struct PrivateDevMode {
    uint32_t signature;  // kPrivateSignature
    int32_t colorAdjust;
    int32_t printSetting;  // kept for others; the driver reads it nowhere
    int32_t rotate180;
    int32_t mirrorImage;
    int32_t jobCapture;
    int32_t noPrint;
    int32_t stitched;
    char labelName[64];  // name of the chosen label
    int32_t usePrivateCopies;
    int16_t copies;
    int16_t chunksize;  // pages
    int32_t chunkActive;
    int16_t alignment;  // an Alignment
    uint8_t reserved110[2];
    int32_t feedSide;
    int16_t overspray;
    uint8_t reserved118[2];
    int32_t kws;            // blank pixels get a faint pattern
    int32_t kws_fullwidth;  // the whole width of the print head is filled
    int16_t purgeBar;       // 0 off, 1 leading, 2 trailing
    int16_t purgeDots;      // pixels
    int16_t purgeGap;       // millimeters
    int16_t purgeFreq;      // pages; 0: the first page only
    int16_t dmPaperSize;    // number of the label that the label fields describe
    uint8_t reserved138[2];
    uint32_t units;                       // of width_string and length_string
    char width_string[8];                 // decimal text
    char length_string[8];                // decimal text
    WCHAR colorProfile[kMaxProfileName];  // file name in the profiles folder; empty: none chosen
    int16_t phHOffset;                    // print-head offset across, tenths of a millimeter
    int16_t phVOffset;                    // print-head offset along, tenths of a millimeter
    int32_t colorMode;                    // a ColorMode
    int8_t adj_brightness;
    int8_t adj_colortone;
    int8_t adj_saturation;
    int8_t adj_cyan;
    int8_t adj_magenta;
    int8_t adj_yellow;
    int8_t adj_black;
    uint8_t reserved695;
};

static_assert(sizeof(PrivateDevMode) == 696);
static_assert(std::has_unique_object_representations_v<PrivateDevMode>, "no byte is padding");

// The driver's own record, as a device instance has it.
struct DeviceMode {
    DEVMODEW pub;
    PrivateDevMode priv;
};

static_assert(sizeof(DeviceMode) == 916);
static_assert(offsetof(DeviceMode, priv) == 220);

// The fields, a row each: where a field is, how the diagnostic log shows it, and which values it may have.
// The dump, the validation and the options of orvexprint walk these rows.

// The values that a number may have, those of a list or else of a range, and the one that replaces any other.
struct ValidValues {
    int32_t least = INT32_MIN;
    int32_t most = INT32_MAX;
    int32_t replacement = {};
    const int16_t* list = nullptr;
    size_t listed = {};
};

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
    ValidValues values;
};

template <typename T>
constexpr FieldType kFieldTypeOf =
    !std::is_array_v<T> ? (std::is_signed_v<T> ? FieldType::kSigned : FieldType::kUnsigned)
                        : (sizeof(std::remove_extent_t<T>) == 1 ? FieldType::kText : FieldType::kWideText);

template <typename T>
constexpr DeviceModeField Field(const char* name, size_t offset, const char* format,
                                ValidValues values = {}) {
    return {name, offset, sizeof(T), kFieldTypeOf<T>, format, values};
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

// Returns what the layout of a page takes from the settings and from its bitmap of `width` x `height` pixels.
PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height);

// The functions below take records from outside. Such a record has at least the bytes through dmDriverExtra
// and ends at its own dmSize + dmDriverExtra; its private part begins at its dmSize. A record whose dmSize
// does not cover dmDriverExtra has no private part.

// Return the bytes of the record's private part, and the part, which may have any alignment.
size_t PrivateSize(const DEVMODEW* record);
const void* PrivatePart(const DEVMODEW* record);

// Copies the record into the driver's own layout. What lies past its end reads as zero or empty.
DeviceMode LoadDevMode(const DEVMODEW* record);

// Writes `values` back to the record that they were loaded from, as far as it reaches.
void StoreDevMode(DEVMODEW* record, const DeviceMode& values);

// Returns the number in a field, which is not a text.
int64_t ReadNumber(const DeviceMode& record, const DeviceModeField& field);

// Returns whether the number is one of the values.
bool IsValid(const ValidValues& values, int32_t number);

// Replaces the number in a field that must not have it. Texts and unsigned numbers may have any value.
void ForceValid(DeviceMode* record, const DeviceModeField& field);

// Write the record to the log, at Trace; one line at Info if its dmSize is not 220, nothing for null.
void DumpDevMode(const DEVMODEW* record);
void DumpDevMode(const char* caption, const DEVMODEW* record);

}  // namespace orvex
