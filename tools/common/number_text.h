// Decimal numbers as people write them, independent of the locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvex::tools {

// Returns the number with `digits` digits after the point.
std::string DecimalText(double value, int digits);

// Parses the whole text as a decimal number: an optional sign, digits, at most one point. Returns nothing for
// any other text.
std::optional<double> ParseNumber(std::string_view text);

// Parses the whole text as an integer. Returns nothing for any other text, or beyond 32 bits.
std::optional<int> ParseWhole(std::string_view text);

}  // namespace orvex::tools
