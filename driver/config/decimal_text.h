// Texts that people wrote: decimal numbers and blanks around values.
#pragma once

#include <string_view>

#include "platform/windows.h"

namespace orvex {

// Why a text is no decimal number.
constexpr DWORD kErrorDecimalMemory = 0x20010001;
constexpr DWORD kErrorDecimalText = 0x20010008;    // null text
constexpr DWORD kErrorDecimalOut = 0x2001000F;     // nowhere to store the number
constexpr DWORD kErrorDecimalSyntax = 0x2001001B;  // a character that does not belong there

// Reads a decimal number: an optional sign, digits and at most one ".", whatever the locale. Without digits
// it is 0. Returns 0, or one of the codes above with `out` as it was.
DWORD ParseDecimal(const char* text, double* out);
DWORD ParseDecimal(std::string_view text, double* out);

// Cuts blanks, tabs, line ends, vertical tabs and form feeds off both ends of a text, in place.
void TrimWhitespace(char* text);

}  // namespace orvex
