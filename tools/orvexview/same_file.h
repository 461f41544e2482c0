// Names of one file.
#pragma once

#include <string>

namespace orvex::tools::view {

// Returns whether two names are of one file, by its identity; files that do not exist yet, by where they
// would be.
bool IsSameFile(const std::string& a, const std::string& b);

}  // namespace orvex::tools::view
