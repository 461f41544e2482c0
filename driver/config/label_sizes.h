// Label sizes: decimal text, in a unit of its own, for each length of a label.
//
// The printer's list of named label sizes is kept in its printer data in the spooler: under the key "Label
// Sizes" one sub-key for each label, named with its number, with the values
//
//     version  REG_DWORD  1
//     name     REG_SZ     at most 63 characters
//     width    REG_SZ     decimal text in the label's units, at most 7 characters
//     length   REG_SZ     the same
//     units    REG_DWORD  0 millimeters, 1 inches, other tenths of a millimeter
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/windows.h"

namespace orvex {

// Reasons why a text gives no number.
constexpr DWORD kErrorDecimalMemory = 0x20010001;  // out of memory
constexpr DWORD kErrorDecimalText = 0x20010008;    // null text
constexpr DWORD kErrorDecimalOut = 0x2001000F;     // nowhere to store the number
constexpr DWORD kErrorDecimalSyntax = 0x2001001B;  // a character that is not part of a number

// Reads a decimal number: an optional sign, digits and at most one ".", whatever the locale. A text without
// digits is 0. Returns 0, or one of the codes above and leaves `out` as it is.
DWORD ParseDecimal(std::string_view text, double* out);

// Returns the length that `text` gives in `units` (0 millimeters, 1 inches, other tenths of a millimeter) as
// tenths of a millimeter: a half is added and the sum truncated. A text that is not a number gives 0.
//
// These are the low 16 bits of that whole number, as in a device mode; one that does not fit 64 bits gives 0.
int16_t LabelLengthTenthsMm(std::string_view text, uint32_t units);

// Sets the paper's width and length to those of a label.
void SetPaperSize(DEVMODEW* pub, std::string_view width, std::string_view length, uint32_t units);

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
    uint32_t count_ = {};
};

// Reads one label. Returns 0, a system error code, kErrorLabelType for a value of another type or
// kErrorLabelVersion for a layout that is not known; `entry` is undefined then.
DWORD ReadLabel(HANDLE printer, LabelSize* entry, uint16_t number);

// Writes one label under its number. Returns 0 or a system error code, after which it may be there in part.
DWORD WriteLabel(HANDLE printer, const LabelSize& entry);

// Gets the number for the next label: one more than the largest, 258 at least. Returns 0 or a system error
// code; ERROR_ARITHMETIC_OVERFLOW when the numbers are used up.
DWORD NextLabelNumber(HANDLE printer, uint16_t* number);

}  // namespace orvex
