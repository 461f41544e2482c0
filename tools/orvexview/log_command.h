// orvexview --log FILE: the driver's diagnostic log as a tree.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::view {

// Returns whether the arguments ask for a log instead of a print file.
bool IsLogCommand(const std::vector<std::string>& arguments);

// Shows a log as the arguments say. Returns the exit status: 0, or 1 with --errors when the log has some.
// Throws OptionError and std::runtime_error.
int RunLogCommand(const std::vector<std::string>& arguments, std::ostream& out);

}  // namespace orvex::tools::view
