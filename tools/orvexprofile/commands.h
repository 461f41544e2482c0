// The commands of orvexprofile, each a subcommand of the same command line. A command throws std::exception,
// in words, when it can't do what is asked, and leaves no half-written file under an asked name.
#pragma once

#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "tools/orvexprofile/driver_colors.h"

namespace orvex::tools::profile {

// The exit status that a command leaves behind.
struct CommandResult {
    int status = 0;
};

void AddInfoCommand(CLI::App& app, std::ostream& out, CommandResult& result);
void AddBuildCommand(CLI::App& app, std::ostream& out);
void AddConvertCommand(CLI::App& app, std::ostream& out);
void AddApplyCommand(CLI::App& app, std::ostream& out);
void AddChartCommand(CLI::App& app, std::ostream& out);

// The same check without words of its own in the help.
CLI::Validator Unnamed(CLI::Validator check);

// --variant: which of the profile's two a picture shows.
void AddVariantOption(CLI::App& command, PrintVariant& variant);

// The text of --resolution-codes: two numbers with a comma between.
ResolutionCodes ParseResolutionCodes(const std::string& text);

// Writes the profile, has the driver's reader take both variants of it, and tells what was written.
void WriteAcceptedProfile(const Profile& profile, const std::filesystem::path& path, std::ostream& out);

}  // namespace orvex::tools::profile
