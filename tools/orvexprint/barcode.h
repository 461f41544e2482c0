// Barcodes in Code 39, which any scanner reads.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools::print {

// Returns the modules of the text with its start and stop characters, from left to right, all of one width:
// '1' for a bar, '0' for a space. Letters become capitals, characters that the code lacks become "-".
std::string Code39(std::string_view text);

}  // namespace orvex::tools::print
