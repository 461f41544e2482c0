// Text of unknown origin, made safe inside HTML.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools {

// Returns the text with each character that means something in HTML, in attributes too, written as a
// reference. Bytes that are neither printable ASCII nor well-formed UTF-8 become \xNN.
std::string HtmlText(std::string_view text);

}  // namespace orvex::tools
