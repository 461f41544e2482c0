// Lengths of labels: decimal text in the label's own unit, and tenths of a millimeter.
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
// Device modes have 16 bits for a length, so these are the low 16 bits of that whole number; one that does
// not fit 64 bits gives 0.
int16_t LabelLengthTenthsMm(std::string_view text, uint32_t units);

// Sets the paper's width and length to those of a label.
void SetPaperSize(DEVMODEW* pub, std::string_view width, std::string_view length, uint32_t units);

}  // namespace orvex
