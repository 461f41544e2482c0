// Help texts in two columns, the second one wrapped to a terminal's width.
#pragma once

#include <CLI/CLI.hpp>

namespace orvex::tools {

class HelpFormat : public CLI::Formatter {
  public:
    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option*> options) const override;
    std::string make_option(const CLI::Option* option, bool isPositional) const override;
};

}  // namespace orvex::tools
