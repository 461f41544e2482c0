// orvexview A --compare B: the differences between two print files.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::view {

// Returns whether the arguments ask to compare two print files.
bool IsCompareCommand(const std::vector<std::string>& arguments);

// Compares two print files as the arguments say. Returns the exit status: 0 if they are the same, 1 if they
// differ. Throws OptionError and std::runtime_error.
int RunCompareCommand(const std::vector<std::string>& arguments, std::ostream& out);

}  // namespace orvex::tools::view
