// The meanings of the job settings in the PJL header.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools::view {

// Returns the meaning of a setting's name and value; empty if the name is unknown. States that a value is out
// of range.
std::string MeaningOf(std::string_view name, std::string_view value);

}  // namespace orvex::tools::view
