// Bytes of unknown origin as text for a person.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools::view {

// The text with all that is neither printable ASCII nor well-formed UTF-8 written as \xNN. Texts longer than
// `maxBytes` are cut there and end in "...".
std::string PrintableText(std::string_view text, size_t maxBytes = 200);

}  // namespace orvex::tools::view
