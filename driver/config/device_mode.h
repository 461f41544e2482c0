// The device mode: every setting of a job. The system's DEVMODEW (220 bytes) is followed at once by the
// driver's private extension (696 bytes). The record is exchanged with the spooler, the printer's user
// interface and applications, so its layout is fixed to the byte.
#pragma once

#include <cstddef>
#include <cstdint>

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

// The private part in the order of storage. Flags are 0 or 1. Texts end at a zero character or fill their
// field. device_mode_fields.h has the valid values.
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
static_assert(offsetof(PrivateDevMode, labelName) == 32);
static_assert(offsetof(PrivateDevMode, usePrivateCopies) == 96);
static_assert(offsetof(PrivateDevMode, chunkActive) == 104);
static_assert(offsetof(PrivateDevMode, feedSide) == 112);
static_assert(offsetof(PrivateDevMode, kws) == 120);
static_assert(offsetof(PrivateDevMode, purgeBar) == 128);
static_assert(offsetof(PrivateDevMode, dmPaperSize) == 136);
static_assert(offsetof(PrivateDevMode, units) == 140);
static_assert(offsetof(PrivateDevMode, colorProfile) == 160);
static_assert(offsetof(PrivateDevMode, phHOffset) == 680);
static_assert(offsetof(PrivateDevMode, colorMode) == 684);
static_assert(offsetof(PrivateDevMode, adj_black) == 694);

// The driver's own record, as a device instance has it.
struct DeviceMode {
    DEVMODEW pub;
    PrivateDevMode priv;
};

static_assert(sizeof(DeviceMode) == 916);
static_assert(offsetof(DeviceMode, priv) == 220);

// Returns what the layout of a page takes from the settings and from its bitmap of `width` x `height` pixels.
PageLayoutInput LayoutInput(const DeviceMode& mode, int16_t dpi, int32_t width, int32_t height);

// The functions below take records from outside. Such a record has at least the bytes through dmDriverExtra
// and ends at its own dmSize + dmDriverExtra; its private part begins at its dmSize. A record whose dmSize
// does not cover dmDriverExtra has no private part.

// Returns the bytes of the record's private part.
size_t PrivateSize(const DEVMODEW* record);

// Returns the record's private part: PrivateSize() bytes, at any alignment.
const void* PrivatePart(const DEVMODEW* record);

// Copies the record into the driver's own layout. What lies past its end reads as zero or empty.
DeviceMode LoadDevMode(const DEVMODEW* record);

// Writes `values` back to the record that they were loaded from, as far as it reaches.
void StoreDevMode(DEVMODEW* record, const DeviceMode& values);

}  // namespace orvex
