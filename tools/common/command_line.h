// The command line of a program, or of one of its commands that has options of its own. CLI11 parses it; only
// the source of this class includes it, since it takes the compiler longer than anything else.
#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::tools {

// A command line that is wrong, in a sentence.
class OptionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Returns the error `option: "value" is not allowed; it takes ALLOWED`, with the value cut to 40 characters.
OptionError WrongValue(std::string_view option, std::string_view value, std::string_view allowed);

// Returns the number of a text. Throws OptionError if there is none, or if it is out of range.
double NumberIn(std::string_view option, const std::string& text, double least, double most,
                std::string_view allowed);

// Returns whether the arguments have the option, as "--name", or as "--name=value".
bool HasOption(const std::vector<std::string>& arguments, std::string_view option);

class CommandLine {
  public:
    // `usage` follows the program's name in the help's first line; `help` is what shows the help, for
    // messages.
    CommandLine(const char* program, const char* description, const char* usage, const char* footer,
                const char* help = "--help");
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;
    ~CommandLine();

    // The options that are added next are listed under this heading of the help.
    void Group(const char* heading);

    // Adds an option without a value. A `type`, if any, is shown after its name.
    void Flag(const char* names, const std::string& help, const char* type = "");

    // Adds an option that takes a text; the last one counts.
    void Text(const char* names, const char* type, const std::string& help);

    // Adds an option that takes a text, and that may be given several times.
    void Texts(const char* names, const char* type, const std::string& help);

    // Adds the arguments that belong to no option, from one of them to `most`; any number if that is -1.
    void Files(const char* name, const char* type, const std::string& help, int most = 1);

    // Adds "--version", which shows the program's name and version, and moves "--help" after it.
    void Version(const std::string& versionText, const std::string& helpText);

    // An option that must be given; that can't be given beside another one; that needs another one.
    void Require(const char* option);
    void Exclude(const char* option, const char* other);
    void Need(const char* option, const char* other);

    // Parses the arguments after the program's name. If they ask for help or the version, writes that to
    // `out` and returns false. Throws OptionError.
    bool Read(const std::vector<std::string>& arguments, std::ostream& out);

    // Returns whether a flag was given, or an option with a value; a flag that is switched off ("--name=off")
    // was not.
    bool Has(const char* option) const;

    // Returns the value of an option or of a flag ("true" without one), or nothing if it was not given.
    std::optional<std::string> Value(const char* option) const;

    std::vector<std::string> Values(const char* option) const;

  private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

}  // namespace orvex::tools
