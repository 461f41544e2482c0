// The tool for color profiles: orvexprofile COMMAND.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::profile {

// Runs the tool with the arguments that follow its name. Returns the exit status: 0; 1 when the command
// failed or `info` found a file that the driver refuses; 2 for a wrong command line.
int RunProfileTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace orvex::tools::profile
