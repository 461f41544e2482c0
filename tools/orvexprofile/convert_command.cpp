// orvexprofile convert IN.zvp -o OUT.zvp --version N: stores the same colors in another version.
#include <memory>

#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/conversion.h"
#include "tools/orvexprofile/driver_colors.h"
#include "tools/orvexprofile/report.h"

namespace orvex::tools::profile {

namespace {

struct ConvertOptions {
    std::string input;
    std::string output;
    int version = kLastVersion;
    int step = 1;
};

// Reports the loss, and the difference to what the driver printed before if that was not what the profile
// means.
void ReportLoss(std::ostream& out, const ConvertOptions& options, PrintVariant variant,
                std::span<const uint32_t> colors) {
    const ConversionLoss loss = MeasureLoss(options.input, options.output, variant, colors);
    const std::string where = variant == PrintVariant::kAt600 ? "600 dpi" : "other resolutions";
    ReportDifference(out, "Loss, " + where, loss.meant);
    if (PrintsAsMeant(loss.fromVersion)) return;
    ReportDifference(out, "Against what the driver printed before, " + where, loss.printed);
}

void Convert(const ConvertOptions& options, std::ostream& out) {
    std::error_code ignored;
    if (std::filesystem::equivalent(options.input, options.output, ignored)) {
        throw std::invalid_argument("the loss can only be told when input and output are two files");
    }
    WriteAcceptedProfile(ConvertProfile(options.input, options.version), options.output, out);
    if (const std::string_view loss = VersionLoss(options.version); !loss.empty()) out << loss << '\n';
    const std::vector<uint32_t> colors = ColorsEvery(options.step);
    ReportLoss(out, options, PrintVariant::kAt600, colors);
    ReportLoss(out, options, PrintVariant::kOther, colors);
}

}  // namespace

void AddConvertCommand(CLI::App& app, std::ostream& out) {
    CLI::App* command =
        app.add_subcommand("convert", "Turns a profile into one of another version, and tells the loss");
    const auto options = std::make_shared<ConvertOptions>();
    command->add_option("FILE", options->input, "The profile to convert")->required()->type_name("");
    command->add_option("-o,--output", options->output, "The profile to write; required")
        ->required()
        ->type_name("FILE");
    command
        ->add_option("--version", options->version, "The version of the profile to write, 1 to 5; required")
        ->type_name("N")
        ->required()
        ->check(Unnamed(CLI::Range(kFirstVersion, kLastVersion)));
    command
        ->add_option("--compare-every", options->step,
                     "Compares at every so many values of each component, 1 to 85 (default 1: every colour)")
        ->type_name("N")
        ->check(Unnamed(CLI::Range(1, 85)));
    command->callback([&out, options] { Convert(*options, out); });
}

}  // namespace orvex::tools::profile
