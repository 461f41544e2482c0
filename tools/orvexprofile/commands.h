// The commands of orvexprofile, each a subcommand of the same command line. A command that fails throws
// std::exception, in words, and leaves no half-written file under a name that it was given.
#pragma once

#include <ostream>

#include <CLI/CLI.hpp>

namespace orvex::tools::profile {

void AddInfoCommand(CLI::App& app, std::ostream& out);
void AddBuildCommand(CLI::App& app, std::ostream& out);
void AddConvertCommand(CLI::App& app, std::ostream& out);
void AddApplyCommand(CLI::App& app, std::ostream& out);
void AddChartCommand(CLI::App& app, std::ostream& out);

}  // namespace orvex::tools::profile
