// orvexview FILE --ink: the milliliters and the cost of a job.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::view {

// Returns whether the arguments ask for the ink of a job.
bool IsInkCommand(const std::vector<std::string>& arguments);

// Shows the ink of a job as the arguments say. Returns the exit status. Throws OptionError and
// std::runtime_error.
int RunInkCommand(const std::vector<std::string>& arguments, std::ostream& out);

}  // namespace orvex::tools::view
