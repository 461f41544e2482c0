// The command line of one of orvexview's commands, which have options of their own.
#pragma once

#include <CLI/CLI.hpp>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::tools::view {

// Returns whether the arguments have the option, as "--name", or as "--name=value".
bool HasOption(const std::vector<std::string>& arguments, std::string_view option);

class CommandLine {
  public:
    CommandLine(const char* description, const char* usage, const char* footer);

    CLI::App& App() { return app_; }

    // Parses the arguments. If they ask for help, writes that to `out` and returns false. Throws OptionError.
    bool Read(const std::vector<std::string>& arguments, std::ostream& out);

  private:
    CLI::App app_;
};

// Returns the number of a text. Throws OptionError that names the option and what is allowed.
double NumberIn(const char* option, const std::string& text, double least, double most, const char* allowed);

}  // namespace orvex::tools::view
