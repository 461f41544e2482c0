// The printer's list of named label sizes, kept in its printer data in the spooler: under the key "Label
// Sizes" one sub-key for each label, named with its number, with the values
//
//     version  REG_DWORD  1
//     name     REG_SZ     at most 63 characters
//     width    REG_SZ     decimal text in the label's units, at most 7 characters
//     length   REG_SZ     the same
//     units    REG_DWORD  0 millimetres, 1 inches, other tenths of a millimetre
#pragma once

#include <cstdint>

#include "driver/support/heap.h"
#include "platform/windows.h"

namespace orvex {

constexpr uint32_t kMaxLabels = 128;  // room that every reader of the list offers

// The driver's own failures of reading a label.
constexpr DWORD kErrorLabelVersion = 0x20000002;
constexpr DWORD kErrorLabelType = 0x20000004;

struct LabelSize {
    char name[64];    // zero-terminated
    char width[8];    // decimal text in `units`
    char length[8];   // decimal text in `units`
    uint32_t units;   // 0 mm, 1 inches, other tenths of a millimetre
    uint16_t number;  // paper number, 257 or more
};

// Whether the printer's data holds a list.
bool HasLabelList(HANDLE printer);

// Reads the list into `entries`; labels that can't be read are left out, and reading stops at `capacity`.
// Returns 0 or a system error code; a printer without labels is 0 with a count of 0.
DWORD ReadPrinterLabelList(HANDLE printer, LabelSize* entries, uint32_t capacity, uint32_t* count);

// Reads one label. Returns 0, a system error code, kErrorLabelType for a value of another type or
// kErrorLabelVersion for a layout that is not known; `entry` is then undefined.
DWORD ReadLabel(HANDLE printer, LabelSize* entry, uint16_t number);

// Writes one label under its number. Returns 0 or a system error code; some values may then be written.
DWORD WriteLabel(HANDLE printer, const LabelSize& entry);

// The number for the next label: one more than the largest, 258 at least. Returns 0 or a system error code;
// ERROR_ARITHMETIC_OVERFLOW when the numbers are used up.
DWORD NextLabelNumber(HANDLE printer, uint16_t* number);

}  // namespace orvex
