#include "tools/orvexview/command_line.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "tools/common/help_format.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/orvexview/options.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kHelpOptions[] = {"-h", "--help"};

}  // namespace

bool HasOption(const std::vector<std::string>& arguments, std::string_view option) {
    const std::string withValue = std::string(option) + "=";
    return std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return argument == option || argument.starts_with(withValue);
    });
}

CommandLine::CommandLine(const char* description, const char* usage, const char* footer)
    : app_(description, "orvexview") {
    app_.allow_windows_style_options(false);  // a file name may begin with a slash
    app_.formatter(std::make_shared<HelpFormat>(usage));
    app_.footer(footer);
}

bool CommandLine::Read(const std::vector<std::string>& arguments, std::ostream& out) {
    // The command's own option may be without its value then.
    if (std::find_first_of(arguments.begin(), arguments.end(), std::begin(kHelpOptions),
                           std::end(kHelpOptions)) != arguments.end()) {
        out << app_.help();
        return false;
    }
    try {
        app_.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        throw OptionError(std::string(error.what()) + "; with --help this command shows what there is");
    }
    return true;
}

double NumberIn(const char* option, const std::string& text, double least, double most, const char* allowed) {
    const std::optional<double> number = ParseNumber(text);
    if (number && *number >= least && *number <= most) return *number;
    throw OptionError(std::string(option) + ": \"" + PrintableText(text, 40) +
                      "\" is not allowed; it takes " + allowed);
}

}  // namespace orvex::tools::view
