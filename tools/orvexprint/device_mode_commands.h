// orvexprint --show-devmode and --compare-devmode: what device modes hold, and what the driver makes of them.
#pragma once

#include <string>
#include <vector>

#include "tools/orvexprint/print_environment.h"

namespace orvex::tools::print {

// Returns whether the arguments ask for one of these commands instead of a job.
bool IsDeviceModeCommand(const std::vector<std::string>& arguments);

// Runs the command. Returns the exit status: kExitPrinted, or kExitFailed if the compared device modes
// differ. Throws OptionError, which in a comparison also means files that can't be compared.
int RunDeviceModeCommand(const std::vector<std::string>& arguments, const PrintEnvironment& environment);

}  // namespace orvex::tools::print
