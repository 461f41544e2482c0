// The printer's list of named label sizes, kept in its printer data in the spooler: under the key "Label
// Sizes" one sub-key for each label, named with its number, with the values
//
//     version  REG_DWORD  1
//     name     REG_SZ     at most 63 characters
//     width    REG_SZ     decimal text in the label's units, at most 7 characters
//     length   REG_SZ     the same
//     units    REG_DWORD  0 millimeters, 1 inches, other tenths of a millimeter
#pragma once

#include <cstdint>

#include "platform/windows.h"

namespace orvex {

constexpr uint32_t kMaxLabels = 128;  // labels that every reader of the list has room for

// The driver's own failures of reading a label.
constexpr DWORD kErrorLabelVersion = 0x20000002;
constexpr DWORD kErrorLabelType = 0x20000004;

struct LabelSize {
    char name[64];   // zero-terminated
    char width[8];   // decimal text in `units`
    char length[8];  // decimal text in `units`
    uint32_t units;
    uint16_t number;  // paper number, 257 or more
};

// Returns whether the printer's data has a list.
bool HasLabelList(HANDLE printer);

// Reads the list into `entries`; labels that can't be read are left out, and reading stops at `capacity`.
// Returns 0 or a system error code; a printer without labels gives 0 and a count of 0.
DWORD ReadPrinterLabelList(HANDLE printer, LabelSize* entries, uint32_t capacity, uint32_t* count);

// The list as it was read, to look labels up in. Numbers and names can be in it more than once.
class LabelList {
  public:
    explicit LabelList(HANDLE printer) { ReadPrinterLabelList(printer, labels_, kMaxLabels, &count_); }

    uint32_t Count() const { return count_; }
    const LabelSize* begin() const { return labels_; }
    const LabelSize* end() const { return labels_ + count_; }

    // Return the label of that number; null when the list has none.
    const LabelSize* FirstOfNumber(int16_t number) const;
    const LabelSize* LastOfNumber(int16_t number) const;

  private:
    LabelSize labels_[kMaxLabels];
    uint32_t count_ = 0;
};

// Reads one label. Returns 0, a system error code, kErrorLabelType for a value of another type or
// kErrorLabelVersion for a layout that is not known; `entry` is undefined then.
DWORD ReadLabel(HANDLE printer, LabelSize* entry, uint16_t number);

// Writes one label under its number. Returns 0 or a system error code; on failure, some values may have been
// written.
DWORD WriteLabel(HANDLE printer, const LabelSize& entry);

// Gets the number for the next label: one more than the largest, 258 at least. Returns 0 or a system error
// code; ERROR_ARITHMETIC_OVERFLOW when the numbers are used up.
DWORD NextLabelNumber(HANDLE printer, uint16_t* number);

}  // namespace orvex
