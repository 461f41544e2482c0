// Checks of the values of options, with messages that name the value and say what is allowed, and the options
// that several commands have.
#pragma once

#include <CLI/CLI.hpp>

#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

// Returns a check for a number, with or without decimals, from `least` to `most`; `unit` follows the range in
// the message.
CLI::Validator NumberFrom(double least, double most, const std::string& unit);
CLI::Validator WholeFrom(int least, int most);

// Returns a check for one of some words.
CLI::Validator OneOf(const std::vector<std::string>& words);

// Adds --resolution-codes, the print engine's codes that a profile gets.
void AddResolutionCodesOption(CLI::App& command, std::optional<ResolutionCodes>& codes);

// Adds --variant, which says which of a profile's two variants a picture shows.
void AddVariantOption(CLI::App& command, PrintVariant& variant);

}  // namespace orvex::tools::profile
