#include "profile_tool/commands.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <memory>
#include <stdexcept>

#include "host/help_format.h"
#include "profile_tool/profile_writer.h"
#include "profile_tool/report.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexprofile info neutral.zvp\n"
    "  orvexprofile build --icc printer.icc -o satin.zvp --name Satin --ink-limit 240\n"
    "  orvexprofile convert satin.zvp -o satin1.zvp --version 1\n"
    "  orvexprofile apply photo.png print.png --profile satin.zvp\n"
    "  orvexprofile chart satin.zvp -o satin.png\n"
    "\n"
    "orvexprofile COMMAND --help tells the options of a command.";

class ProfileHelpFormat : public HelpFormat {
  public:
    std::string make_usage(const CLI::App* app, std::string name) const override {
        // The list of positional arguments brings its own blank line.
        const auto positional = [](const CLI::Option* option) { return option->get_positional(); };
        return HelpFormat::make_usage(app, name) + (app->get_options(positional).empty() ? "\n" : "");
    }
};

}  // namespace

CLI::Validator Unnamed(CLI::Validator check) {
    return check.description("");
}

void AddVariantOption(CLI::App& command, PrintVariant& variant) {
    const std::map<std::string, PrintVariant> variants = {{"600", PrintVariant::At600},
                                                          {"other", PrintVariant::Other}};
    command
        .add_option_function<std::string>(
            "--variant", [&variant, variants](const std::string& name) { variant = variants.at(name); },
            "The variant of the profile: for 600 dpi, or for other resolutions (default)")
        ->type_name("600|other")
        ->check(Unnamed(CLI::IsMember(variants)));
}

ResolutionCodes ParseResolutionCodes(const std::string& text) {
    int codes[2] = {};
    const char* next = text.data();
    const char* const end = next + text.size();
    for (int& code : codes) {
        const auto [stop, error] = std::from_chars(next, end, code);
        const bool last = &code == codes + 1;
        if (error != std::errc() || code < -128 || code > 127 ||
            (last ? stop != end : stop == end || *stop != ',')) {
            throw std::invalid_argument(
                "--resolution-codes takes two numbers from -128 to 127, OTHER,600, not \"" + text + "\"");
        }
        next = stop + 1;
    }
    return {static_cast<int8_t>(codes[0]), static_cast<int8_t>(codes[1])};
}

void WriteAcceptedProfile(const Profile& profile, const std::filesystem::path& path, std::ostream& out) {
    WriteProfileFile(profile, path);
    for (PrintVariant variant : {PrintVariant::At600, PrintVariant::Other}) LoadAccepted(path, variant);
    out << "Wrote " << path.string() << ": version " << profile.version << ", "
        << GroupedNumber(FileSize(profile)) << " bytes, accepted by the driver\n";
    if (profile.name && profile.name->size() > kLongestShownName) {
        out << "The name is longer than " << kLongestShownName
            << " characters: users see the file's name instead, unless profilenames.inf has another.\n";
    }
}

int RunProfileTool(std::vector<std::string> arguments, std::ostream& out, std::ostream& err) {
    CLI::App app("Makes, converts and shows colour profiles (*.zvp)", "orvexprofile");
    app.require_subcommand(1);
    app.formatter(std::make_shared<ProfileHelpFormat>());
    CommandResult result;
    AddInfoCommand(app, out, result);
    AddBuildCommand(app, out);
    AddConvertCommand(app, out);
    AddApplyCommand(app, out);
    AddChartCommand(app, out);
    app.footer(kExamples);
    try {
        std::reverse(arguments.begin(), arguments.end());  // as CLI11 takes them
        app.parse(arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err);
    } catch (const std::exception& error) {
        err << "orvexprofile: " << error.what() << '\n';
        return 1;
    }
    return result.status;
}
