// Checks of the values of options, with messages that name the value and say what is allowed.
#pragma once

#include <CLI/CLI.hpp>

namespace orvex::tools::profile {

// Returns a check for a number, with or without decimals, from `least` to `most`; `unit` follows the range in
// the message.
CLI::Validator NumberFrom(double least, double most, const std::string& unit);
CLI::Validator WholeFrom(int least, int most);

// Returns a check for one of some words.
CLI::Validator OneOf(const std::vector<std::string>& words);

}  // namespace orvex::tools::profile
