#include "tools/orvexprofile/orvexprofile.h"

#include <memory>

#include "tools/common/help_format.h"
#include "tools/orvexprofile/commands.h"

namespace orvex::tools::profile {

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

}  // namespace

int RunProfileTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    CLI::App app("Makes, converts and shows colour profiles (*.zvp)", "orvexprofile");
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormat>());
    AddInfoCommand(app, out);
    AddBuildCommand(app, out);
    AddConvertCommand(app, out);
    AddApplyCommand(app, out);
    AddChartCommand(app, out);
    app.footer(kExamples);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err);
    } catch (const std::exception& error) {
        err << "orvexprofile: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace orvex::tools::profile
