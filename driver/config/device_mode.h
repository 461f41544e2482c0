// The device mode: every setting of a job. The system's DEVMODEW (220 bytes) is followed at once by the
// driver's private extension (696 bytes). The record is exchanged with the spooler, the printer's user
// interface and applications, so its layout is fixed to the byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "driver/color/color_mode.h"
#include "driver/render/alignment.h"
#include "platform/windows.h"

namespace orvex {

constexpr uint16_t kDevModeVersion = 0x0401;  // dmSpecVersion and dmDriverVersion that the driver writes
constexpr uint32_t kPrivateSignature = 0x18284000;
constexpr size_t kMaxProfileName = 260;  // characters of colorProfile, terminator included

constexpr int16_t kPaperCustom = 256;      // DMPAPER_USER: a free custom size
constexpr int16_t kPaperDefault = 257;     // the built-in default label
constexpr int16_t kPaperFirstLabel = 258;  // labels of the printer's own list begin here

// Paper size in tenths of a millimetre that stands in for one out of range.
constexpr int16_t kDefaultPaperLength = 2159;
constexpr int16_t kDefaultPaperWidth = 2794;

// Device resolutions in dots per inch; the last one stands in for any other value.
constexpr int16_t kResolutions[] = {600, 300};
constexpr int16_t kDefaultResolution = 300;

enum : uint32_t { kUnitsMillimetres = 0, kUnitsInches = 1 };  // any other value: tenths of a millimetre

// Flags are 32-bit numbers that must be 0 or 1. Texts are zero-terminated and may fill their field without
// one.
struct PrivateDevMode {
    uint32_t signature;        // kPrivateSignature
    int32_t colorAdjust;       // flag
    int32_t printSetting;      // 0 to 3; kept for others, read by nothing here
    int32_t rotate180;         // flag
    int32_t mirrorImage;       // flag
    int32_t jobCapture;        // flag
    int32_t noPrint;           // flag
    int32_t stitched;          // flag
    char labelName[64];        // name of the chosen label
    int32_t usePrivateCopies;  // flag
    int16_t copies;            // 1 to 10000
    int16_t chunksize;         // pages, 30 to 10000
    int32_t chunkActive;       // flag
    int16_t alignment;         // an Alignment
    uint8_t reserved110[2];
    int32_t feedSide;   // flag
    int16_t overspray;  // 0 to 3
    uint8_t reserved118[2];
    int32_t kws;            // flag: blank pixels get a faint pattern
    int32_t kws_fullwidth;  // flag: fill the whole width of the print head
    int16_t purgeBar;       // 0 off, 1 leading, 2 trailing
    int16_t purgeDots;      // pixels: 1, 5 or 10
    int16_t purgeGap;       // mm: 5, 10 or 15
    int16_t purgeFreq;      // pages: 0 (first page only), 1, 2, 10, 20 or 50
    int16_t dmPaperSize;    // the label number that the label fields describe
    uint8_t reserved138[2];
    uint32_t units;         // of width_string and length_string: 0 mm, 1 inches, other tenths of a millimetre
    char width_string[8];   // decimal text
    char length_string[8];  // decimal text
    WCHAR colorProfile[kMaxProfileName];  // file name in the profiles folder; empty = none chosen
    int16_t phHOffset;                    // print-head offset across, tenths of a millimetre, -1000 to 1000
    int16_t phVOffset;                    // print-head offset along, tenths of a millimetre, -250 to 250
    int32_t colorMode;                    // 0 colour, 1 composite grey, 2 black-only grey
    int8_t adj_brightness;                // the seven adjustments: -100 to 100
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

// The driver's own record: what SetupDefaultDevMode builds and a device instance holds.
struct DeviceMode {
    DEVMODEW pub;
    PrivateDevMode priv;
};

static_assert(sizeof(DeviceMode) == 916);
static_assert(offsetof(DeviceMode, priv) == 220);

// A record from outside ends at its own dmSize + dmDriverExtra; its private part begins at its dmSize. It
// must have the bytes up to dmDriverExtra; one whose dmSize does not cover them has no private part.

// Bytes of the record's private part.
size_t PrivateSize(const DEVMODEW* record);

// The record's private part, PrivateSize() bytes, at any alignment.
const void* PrivatePart(const DEVMODEW* record);

// The record in the driver's own layout. What lies past its end reads as zero or empty.
DeviceMode LoadDevMode(const DEVMODEW* record);

// Writes `values` back to the record that they were loaded from, as far as it reaches.
void StoreDevMode(DEVMODEW* record, const DeviceMode& values);

// Writes the whole record to the diagnostic log, at Trace; a record whose dmSize is not 220 gives one line at
// Info. A null record gives none.
void DumpDevMode(const DEVMODEW* record);

}  // namespace orvex
