// Text of unknown origin, made safe to show.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools {

// Returns the text with each byte that belongs to neither printable ASCII nor well-formed UTF-8 written as
// \xNN. Cuts texts after about `maxBytes` bytes, between two characters, and ends them in "...".
std::string PrintableText(std::string_view text, size_t maxBytes = 200);

}  // namespace orvex::tools
