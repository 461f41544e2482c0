#include "tools/orvexprofile/orvexprofile.h"

#include <memory>

#include "tools/common/help_format.h"
#include "tools/common/printable_text.h"
#include "tools/common/product_version.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/commands.h"

namespace orvex::tools::profile {

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexprofile info neutral.zvp\n"
    "  orvexprofile build --icc printer.icc -o satin.zvp --name Satin --ink-limit 240\n"
    "  orvexprofile convert satin.zvp -o satin1.zvp --version 1\n"
    "  orvexprofile apply photo.png print.png --profile satin.zvp\n"
    "  orvexprofile proof photo.png --profile satin.zvp --icc printer.icc --paper -o proof.png\n"
    "  orvexprofile chart satin.zvp -o satin.png\n"
    "  orvexprofile target -o target\n"
    "\n"
    "The output - is standard output, and what a command says goes to standard error then.\n"
    "orvexprofile COMMAND --help tells the options of a command.";

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;
constexpr const char* kCommands = "info, build, convert, apply, proof, chart or target";

// Returns what is wrong with the command line, in words.
std::string UsageProblem(const CLI::App& app, const std::vector<std::string>& arguments,
                         const CLI::ParseError& error) {
    if (arguments.empty()) return std::string("no command: name one of ") + kCommands;
    const std::string& first = arguments.front();
    const std::vector<CLI::App*> used = app.get_subcommands();
    if (used.empty() && !first.starts_with('-'))
        return "\"" + PrintableText(first) + "\" is no command; it takes " + kCommands;
    return (used.empty() ? "" : used.front()->get_name() + ": ") + error.what();
}

}  // namespace

int RunProfileTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    CLI::App app("Makes, converts and shows colour profiles (*.zvp)", "orvexprofile");
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormat>());
    AddInfoCommand(app, out);
    AddBuildCommand(app, out, err);
    AddConvertCommand(app, out, err);
    AddApplyCommand(app, out, err);
    AddProofCommand(app, out, err);
    AddChartCommand(app, out, err);
    AddTargetCommand(app, out);
    app.footer(kExamples);
    app.set_version_flag("--version", std::string("orvexprofile ") + kProductVersion, "Shows the version");
    const auto complain = [&err](const std::string& problem, int status) {
        err << "orvexprofile: " + problem + "\n";
        return status;
    };
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::Success& shown) {
        return app.exit(shown, out, err);
    } catch (const CLI::RuntimeError& verdict) {
        return verdict.get_exit_code();
    } catch (const CLI::ParseError& error) {
        return complain(UsageProblem(app, arguments, error) + "; --help shows what there is", kExitUsage);
    } catch (const FileClash& error) {
        return complain(error.what(), kExitUsage);
    } catch (const std::bad_alloc&) {
        return complain("there is not enough memory", kExitFailed);
    } catch (const std::exception& error) {
        return complain(error.what(), kExitFailed);
    }
    return 0;
}

}  // namespace orvex::tools::profile
