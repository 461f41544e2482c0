// The commands of orvexprofile, each a subcommand of the same command line. A command that fails throws
// std::exception, in words, and leaves no half-written file under a name that it was given.
#pragma once

#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// The exit status of a command that does not fail.
struct CommandResult {
    int status = 0;
};

void AddInfoCommand(CLI::App& app, std::ostream& out, CommandResult& result);
void AddBuildCommand(CLI::App& app, std::ostream& out);
void AddConvertCommand(CLI::App& app, std::ostream& out);
void AddApplyCommand(CLI::App& app, std::ostream& out);
void AddChartCommand(CLI::App& app, std::ostream& out);

// Returns the same check without words of its own in the help.
CLI::Validator Unnamed(CLI::Validator check);

// Adds --variant, which says which of the profile's two variants a picture shows.
void AddVariantOption(CLI::App& command, PrintVariant& variant);

// Parses the text of --resolution-codes: two numbers with a comma between them. Throws std::invalid_argument.
ResolutionCodes ParseResolutionCodes(const std::string& text);

// Writes the profile, verifies that the driver's reader accepts both variants, and reports the file.
void WriteAcceptedProfile(const Profile& profile, const std::filesystem::path& path, std::ostream& out);

}  // namespace orvex::tools::profile
