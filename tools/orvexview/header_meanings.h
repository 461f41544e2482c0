// The job settings of the PJL header in words.
#pragma once

#include <string>
#include <string_view>

namespace orvex::tools::view {

// What a setting of that name and value means; empty for an unknown name. A value out of its range says so.
std::string MeaningOf(std::string_view name, std::string_view value);

}  // namespace orvex::tools::view
