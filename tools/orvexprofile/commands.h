// The commands of orvexprofile, each a subcommand of the same command line. A command that fails throws
// std::exception, in words, and leaves no half-written file under a name that it was given. What a command
// says goes to `err` instead of `out` when standard output takes a file.
#pragma once

#include <ostream>

#include <CLI/CLI.hpp>

namespace orvex::tools::profile {

void AddInfoCommand(CLI::App& app, std::ostream& out);
void AddBuildCommand(CLI::App& app, std::ostream& out, std::ostream& err);
void AddConvertCommand(CLI::App& app, std::ostream& out, std::ostream& err);
void AddApplyCommand(CLI::App& app, std::ostream& out, std::ostream& err);
void AddProofCommand(CLI::App& app, std::ostream& out, std::ostream& err);
void AddTargetCommand(CLI::App& app, std::ostream& out);
void AddChartCommand(CLI::App& app, std::ostream& out, std::ostream& err);

}  // namespace orvex::tools::profile
