// Code 39: bars that any scanner reads.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools::print {

// The modules of the text with its start and stop signs, from left to right: '1' is a bar, '0' a space, all
// of one width. Letters are raised to capitals; characters that the code lacks become "-".
std::string Code39(std::string_view text);

}  // namespace orvex::tools::print
