// The command orvexprint, without its main function.
#pragma once

#include <string>
#include <vector>

#include "tools/orvexprint/print_environment.h"

namespace orvex::tools::print {

// Runs the command with the arguments after its name, UTF-8. Explains every failure on `error`. Returns the
// exit status: kExitPrinted only if the job printed, or everything else that was asked for is done.
int RunOrvexPrint(const std::vector<std::string>& arguments, const PrintEnvironment& environment);

}  // namespace orvex::tools::print
