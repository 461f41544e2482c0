// The commands that draw:
// orvexprofile apply IN.png OUT.png... shows a picture as the driver would print it;
// orvexprofile chart FILE draws a whole profile.
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tools/common/help_format.h"
#include "tools/common/png_file.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/print_pictures.h"
#include "tools/orvexprofile/value_checks.h"

namespace orvex::tools::profile {

namespace {

struct ApplyOptions {
    std::string picture;
    std::vector<std::string> outputs;
    std::string profile;
    PrintVariant variant = PrintVariant::kOther;
};

// Returns the names of the composite and of the inks' pictures. If only the composite's is given, the inks'
// are made from it; standard output takes the composite alone.
std::vector<std::filesystem::path> OutputNames(const std::vector<std::string>& given) {
    std::vector<std::filesystem::path> names(given.begin(), given.end());
    if (names.size() == 1 + kInks) return names;
    if (names.size() != 1) {
        throw std::invalid_argument(
            "apply writes one composite, or five pictures: composite, K, C, M and Y; not " +
            std::to_string(given.size()));
    }
    const std::filesystem::path composite = names[0];
    for (size_t ink = 0; ink < kInks && !IsStandardOutput(composite); ++ink) {
        names.push_back(composite.parent_path() /
                        (composite.stem().string() + "-" + kInkLetters[ink] + ".png"));
    }
    return names;
}

void Apply(const ApplyOptions& options, std::ostream& out, std::ostream& err) {
    const auto names = OutputNames(options.outputs);
    std::vector<NamedFile> outputs;
    for (const auto& name : names) outputs.push_back({"the output", name});
    RefuseSharedFiles(
        outputs, std::vector<NamedFile>{{"the picture", options.picture}, {"--profile", options.profile}});
    const RasterImage picture = LoadPng(options.picture);
    LoadForPrint(options.profile, options.variant);
    const InkPictures print = PrintPicture(picture, options.variant);
    SavePng(print.composite, print.pixelsPerInch, names[0]);
    for (size_t i = 1; i < names.size(); ++i) SavePng(print.inks[i - 1], print.pixelsPerInch, names[i]);
    std::ostream& report = std::any_of(names.begin(), names.end(), IsStandardOutput) ? err : out;
    report << "Wrote";
    for (const auto& name : names) report << ' ' << name.string();
    report << '\n';
}

constexpr double kPixelsPerInch = 96;

struct ChartOptions {
    std::string profile;
    std::string output;
    PrintVariant variant = PrintVariant::kOther;
};

void Chart(const ChartOptions& options, std::ostream& out, std::ostream& err) {
    const std::filesystem::path profile = options.profile;
    const std::string output = options.output.empty() ? profile.stem().string() + ".png" : options.output;
    RefuseSharedFiles(std::vector<NamedFile>{{"-o", output}},
                      std::vector<NamedFile>{{"the profile", profile}});
    const ProfileFacts facts = LoadAccepted(profile, options.variant);
    const std::string title = profile.filename().string() + "  \"" + facts.Name().value_or("") +
                              "\"  version " + std::to_string(facts.version) + "  " + NameOf(options.variant);
    SavePng(DrawChart(title, options.variant), kPixelsPerInch, output);
    (IsStandardOutput(output) ? err : out) << "Wrote " << output << '\n';
}

}  // namespace

void AddApplyCommand(CLI::App& app, std::ostream& out, std::ostream& err) {
    CLI::App* command = app.add_subcommand("apply", "Shows a picture as the driver would print it");
    const auto options = std::make_shared<ApplyOptions>();
    command->add_option("IN", options->picture, "The picture, a PNG file; - is standard input")
        ->required()
        ->type_name("");
    command
        ->add_option(
            "OUT", options->outputs,
            "The composite to write; the inks' pictures stand beside it as OUT-K.png, OUT-C.png, "
            "OUT-M.png and OUT-Y.png, unless named too, in this order. - is standard output, which takes the "
            "composite alone unless the others are named")
        ->required()
        ->type_name("");
    command
        ->add_option("--profile", options->profile,
                     "The profile to print through (default: the driver's built-in conversion)")
        ->type_name("FILE");
    AddVariantOption(*command, options->variant);
    command->callback([&out, &err, options] { Apply(*options, out, err); });
}

void AddChartCommand(CLI::App& app, std::ostream& out, std::ostream& err) {
    CLI::App* command = app.add_subcommand("chart",
                                           "Draws a profile: ramps of primaries and grey with the curves of "
                                           "their inks, slices of the colour cube");
    const auto options = std::make_shared<ChartOptions>();
    command->add_option("FILE", options->profile, "The profile")->required()->type_name("");
    command
        ->add_option(
            "-o,--output", options->output,
            "The PNG file to write, - for standard output (default: the profile's name, in the current "
            "folder)")
        ->type_name("FILE");
    AddVariantOption(*command, options->variant);
    command->callback([&out, &err, options] { Chart(*options, out, err); });
}

}  // namespace orvex::tools::profile
