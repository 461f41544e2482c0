// Decimal numbers as people write them.
#pragma once

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
DWORD ParseDecimal(const char* text, double* out);
DWORD ParseDecimal(std::string_view text, double* out);

}  // namespace orvex
