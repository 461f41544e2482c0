#include "tools/common/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/common/help_format.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/common/product_version.h"

namespace orvex::tools {

namespace {

constexpr size_t kShownBytes = 40;

}  // namespace

OptionError WrongValue(std::string_view option, std::string_view value, std::string_view allowed) {
    return OptionError(std::string(option) + ": \"" + PrintableText(value, kShownBytes) +
                       "\" is not allowed; it takes " + std::string(allowed));
}

double NumberIn(std::string_view option, const std::string& text, double least, double most,
                std::string_view allowed) {
    const std::optional<double> number = ParseNumber(text);
    if (!number || *number < least || *number > most) throw WrongValue(option, text, allowed);
    return *number;
}

bool HasOption(const std::vector<std::string>& arguments, std::string_view option) {
    const std::string withValue = std::string(option) + "=";
    return std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return argument == option || argument.starts_with(withValue);
    });
}

struct CommandLine::Parser {
    CLI::App app;
    std::string program;
    std::string help;
    std::string group;

    CLI::Option* Add(CLI::Option* option, const char* type, const std::string& text) const {
        if (!group.empty()) option->group(group);
        return option->description(text)->type_name(type);
    }
};

CommandLine::CommandLine(const char* program, const char* description, const char* usage, const char* footer,
                         const char* help)
    : parser_(new Parser{CLI::App(description, program), program, help, ""}) {
    CLI::App& app = parser_->app;
    app.allow_windows_style_options(false);  // a file name may begin with a slash
    app.formatter(std::make_shared<HelpFormat>(usage));
    app.footer(footer);
}

CommandLine::~CommandLine() = default;

void CommandLine::Group(const char* heading) {
    parser_->group = heading;
}

void CommandLine::Flag(const char* names, const std::string& help, const char* type) {
    parser_->Add(parser_->app.add_flag(names), type, help);
}

void CommandLine::Text(const char* names, const char* type, const std::string& help) {
    parser_->Add(parser_->app.add_option(names), type, help)->take_last();
}

void CommandLine::Texts(const char* names, const char* type, const std::string& help) {
    parser_->Add(parser_->app.add_option(names), type, help)->allow_extra_args(false)->take_all();
}

void CommandLine::Files(const char* name, const char* type, const std::string& help, int most) {
    CLI::Option* const files = parser_->Add(parser_->app.add_option(name), type, help);
    if (most != 1) files->expected(1, most)->allow_extra_args();
}

void CommandLine::Version(const std::string& versionText, const std::string& helpText) {
    CLI::App& app = parser_->app;
    parser_->Add(app.set_version_flag("--version", parser_->program + " " + kProductVersion), "",
                 versionText);
    parser_->Add(app.set_help_flag("-h,--help"), "", helpText);
}

void CommandLine::Require(const char* option) {
    parser_->app.get_option(option)->required();
}

void CommandLine::Exclude(const char* option, const char* other) {
    parser_->app.get_option(option)->excludes(other);
}

void CommandLine::Need(const char* option, const char* other) {
    parser_->app.get_option(option)->needs(other);
}

bool CommandLine::Read(const std::vector<std::string>& arguments, std::ostream& out) {
    // A command's own option may be without its value beside one that asks for help.
    CLI::App& app = parser_->app;
    if (HasOption(arguments, "--help") || HasOption(arguments, "-h")) {
        out << app.help();
        return false;
    }
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForVersion& version) {
        out << version.what() << "\n";
        return false;
    } catch (const CLI::ParseError& error) {
        throw OptionError(std::string(error.what()) + "; " + parser_->help + " shows what there is");
    }
    return true;
}

bool CommandLine::Has(const char* option) const {
    const std::optional<std::string> value = Value(option);
    return value && *value != "false" && *value != "off" && *value != "0";
}

std::optional<std::string> CommandLine::Value(const char* option) const {
    const CLI::Option* const found = parser_->app.get_option(option);
    if (found->count() == 0) return std::nullopt;
    return found->results().back();
}

std::vector<std::string> CommandLine::Values(const char* option) const {
    return parser_->app.get_option(option)->results();
}

}  // namespace orvex::tools
