// Decimal numbers as people write them on a command line, whatever the locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvex::tools {

// The number with `digits` digits after the point.
std::string DecimalText(double value, int digits);

// The same without trailing zeros and without a bare point: "2.5", "100".
std::string ShortDecimalText(double value, int digits);

// Reads the whole text as a decimal number: an optional sign, digits, at most one point. None for anything
// else.
std::optional<double> ParseNumber(std::string_view text);

// Reads the whole text as a whole number. None for anything else, or for what a 32-bit number can't hold.
std::optional<int> ParseWhole(std::string_view text);

}  // namespace orvex::tools
