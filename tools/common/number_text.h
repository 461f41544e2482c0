// Numbers and lengths as people write them, independent of the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvex::tools {

constexpr double kMmPerInch = 25.4;
constexpr double kMetersPerInch = 0.0254;

// Returns the number with `digits` digits after the point.
std::string DecimalText(double value, int digits);

// Returns 39329 as "39,329".
std::string GroupedNumber(uint64_t number);

// Returns a length in millimeters with one decimal, without the unit.
std::string MmText(double length, double lengthPerInch);

// Returns "2362 x 3543".
std::string SizeText(uint64_t width, uint64_t height);

// Parses the whole text as a decimal number: an optional sign, digits, at most one point. Returns nothing for
// any other text.
std::optional<double> ParseNumber(std::string_view text);

// Parses the whole text as an integer. Returns nothing for any other text, or beyond 32 bits.
std::optional<int> ParseWhole(std::string_view text);

}  // namespace orvex::tools
