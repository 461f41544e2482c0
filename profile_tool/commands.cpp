#include "profile_tool/commands.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <stdexcept>

#include "profile_tool/profile_writer.h"
#include "profile_tool/report.h"

void AddVariantOption(CLI::App& command, PrintVariant& variant) {
    const std::map<std::string, PrintVariant> variants = {{"600", PrintVariant::At600},
                                                          {"other", PrintVariant::Other}};
    command
        .add_option_function<std::string>(
            "--variant", [&variant, variants](const std::string& name) { variant = variants.at(name); },
            "The variant of the profile: 600 (dpi) or other (default)")
        ->check(CLI::IsMember(variants));
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
    CommandResult result;
    AddInfoCommand(app, out, result);
    AddBuildCommand(app, out);
    AddConvertCommand(app, out);
    AddApplyCommand(app, out);
    AddChartCommand(app, out);
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
