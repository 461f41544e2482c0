// orvexprofile chart FILE: draws a whole profile.
#include <memory>

#include "tools/common/png_file.h"
#include "tools/orvexprofile/chart.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/profile_loading.h"

namespace orvex::tools::profile {

namespace {

constexpr double kPixelsPerInch = 96;

struct ChartOptions {
    std::string profile;
    std::string output;
    PrintVariant variant = PrintVariant::kOther;
};

void Chart(const ChartOptions& options, std::ostream& out) {
    const std::filesystem::path profile = options.profile;
    const ProfileFacts facts = LoadAccepted(profile, options.variant);
    const std::string title = profile.filename().string() + "  \"" + facts.Name().value_or("") +
                              "\"  version " + std::to_string(facts.version) +
                              (options.variant == PrintVariant::kAt600 ? "  600 dpi" : "  other resolutions");
    const std::string output = options.output.empty() ? profile.stem().string() + ".png" : options.output;
    SavePng(DrawChart(title, options.variant), kPixelsPerInch, output);
    out << "Wrote " << output << '\n';
}

}  // namespace

void AddChartCommand(CLI::App& app, std::ostream& out) {
    CLI::App* command = app.add_subcommand("chart",
                                           "Draws a profile: ramps of primaries and grey with the curves of "
                                           "their inks, slices of the colour cube");
    const auto options = std::make_shared<ChartOptions>();
    command->add_option("FILE", options->profile, "The profile")->required()->type_name("");
    command
        ->add_option("-o,--output", options->output,
                     "The PNG file to write (default: the profile's name, in the current folder)")
        ->type_name("FILE");
    AddVariantOption(*command, options->variant);
    command->callback([&out, options] { Chart(*options, out); });
}

}  // namespace orvex::tools::profile
