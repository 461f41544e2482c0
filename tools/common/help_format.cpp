#include "tools/common/help_format.h"

#include <sstream>

namespace orvex::tools {

namespace {

constexpr size_t kFirstColumn = 30;
constexpr size_t kLineWidth = 100;

}  // namespace

std::string HelpFormat::make_usage(const CLI::App* app, std::string name) const {
    if (!usage_.empty()) return "Usage: " + name + " " + usage_ + "\n";
    // The list of positional arguments begins with a blank line of its own.
    const auto positional = [](const CLI::Option* option) { return option->get_positional(); };
    return Formatter::make_usage(app, name) + (app->get_options(positional).empty() ? "\n" : "");
}

// Separates groups by one blank line.
std::string HelpFormat::make_group(std::string group, bool isPositional,
                                   std::vector<const CLI::Option*> options) const {
    const std::string text = Formatter::make_group(group, isPositional, options);
    return isPositional ? text + "\n" : text.substr(1);
}

std::string HelpFormat::make_option(const CLI::Option* option, bool isPositional) const {
    std::string line = "  " + option->get_name(isPositional, !isPositional);
    const std::string type = option->get_type_name();
    if (!type.empty()) line += (type.starts_with('[') ? "" : " ") + type;
    std::string out;
    if (line.size() + 1 > kFirstColumn) {
        out = line + "\n";
        line.clear();
    }
    line.resize(kFirstColumn, ' ');
    std::istringstream words(option->get_description());
    bool fresh = true;
    for (std::string word; words >> word;) {
        if (!fresh && line.size() + 1 + word.size() > kLineWidth) {
            out += line + "\n";
            line.assign(kFirstColumn, ' ');
            fresh = true;
        }
        line += (fresh ? "" : " ") + word;
        fresh = false;
    }
    return out + line + "\n";
}

CLI::Validator Unnamed(CLI::Validator check) {
    return check.description("");
}

}  // namespace orvex::tools
