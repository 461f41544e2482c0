// Help texts in two columns, the second one wrapped to a terminal's width, for commands that CLI11 parses.
#pragma once

#include <CLI/CLI.hpp>

namespace orvex::tools {

class HelpFormat : public CLI::Formatter {
  public:
    // `usage` follows the program's name in the first line; if empty, CLI11 makes it.
    explicit HelpFormat(std::string usage = "") : usage_(std::move(usage)) {}

    std::string make_usage(const CLI::App* app, std::string name) const override;
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option*> options) const override;
    std::string make_option(const CLI::Option* option, bool isPositional) const override;

  private:
    std::string usage_;
};

// Returns the same check without words of its own in the help.
CLI::Validator Unnamed(CLI::Validator check);

}  // namespace orvex::tools
