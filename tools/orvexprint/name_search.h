// Names that people write in their own way, and the names that they may have meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvex::tools::print {

// Returns the text with small letters for the capitals of ASCII.
std::string InSmallLetters(std::string_view text);

// Returns the names in quotes, those most like `name` first; of many only a few, with the number of all of
// `kind`, which --list shows.
std::string NearestNames(std::string_view name, std::vector<std::string> names, std::string_view kind);

}  // namespace orvex::tools::print
