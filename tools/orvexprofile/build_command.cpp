// orvexprofile build --icc PRINTER.icc -o FILE.zvp: makes a profile from a printer's ICC profile.
#include <memory>

#include "tools/common/printable_text.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/conversion.h"
#include "tools/orvexprofile/driver_colors.h"
#include "tools/orvexprofile/icc_profile.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/profile_loading.h"
#include "tools/orvexprofile/profile_writer.h"
#include "tools/orvexprofile/report.h"

namespace orvex::tools::profile {

namespace {

struct BuildOptions {
    std::string icc;
    std::string output;
    int version = kLastVersion;
    RenderingIntent intent = RenderingIntent::kPerceptual;
    bool blackPointCompensation = false;
    std::string name;
    std::string codes;
    InkTreatment treatment;
};

constexpr int kComparedStep = 5;  // between the component values at which the driver's answer is compared

Profile BuildProfile(const BuildOptions& options, const IccProfile& icc) {
    Profile profile;
    profile.version = options.version;
    profile.name =
        options.name.empty() ? std::filesystem::path(options.output).stem().string() : options.name;
    CheckProfileName(*profile.name);
    if (!options.codes.empty()) profile.codes = ParseResolutionCodes(options.codes);
    FillVariants(profile, icc.Source(), options.treatment);
    return profile;
}

// Reports how far the driver's answers through the file are from those of the ICC profile itself.
void ReportAccuracy(std::ostream& out, const BuildOptions& options, const IccProfile& icc,
                    PrintVariant variant) {
    const bool at600 = variant == PrintVariant::kAt600;
    const double scale = at600 ? options.treatment.scaleAt600 : options.treatment.scaleOther;
    const std::vector<uint32_t> colors = ColorsEvery(kComparedStep);
    std::vector<uint32_t> wanted(colors.size());
    Treated(icc.Source(), options.treatment.limit, scale)(colors, wanted);
    LoadIntoDriver(options.output, variant);
    ReportDifference(out, std::string("Driver against ICC, ") + (at600 ? "600 dpi" : "other resolutions"),
                     CompareInks(wanted, PrintedInks(colors)));
}

void Build(const BuildOptions& options, std::ostream& out) {
    const IccProfile icc(options.icc, options.intent, options.blackPointCompensation);
    out << "From " << PrintableText(icc.Description()) << '\n';
    WriteAcceptedProfile(BuildProfile(options, icc), options.output, out);
    if (const std::string_view loss = VersionLoss(options.version); !loss.empty()) out << loss << '\n';
    ReportAccuracy(out, options, icc, PrintVariant::kAt600);
    ReportAccuracy(out, options, icc, PrintVariant::kOther);
}

const std::map<std::string, RenderingIntent> kIntents = {
    {"perceptual", RenderingIntent::kPerceptual},
    {"relative", RenderingIntent::kRelativeColorimetric},
    {"saturation", RenderingIntent::kSaturation},
    {"absolute", RenderingIntent::kAbsoluteColorimetric}};

void AddSourceOptions(CLI::App& command, const std::shared_ptr<BuildOptions>& options) {
    command.add_option("--icc", options->icc, "The printer's ICC profile; required")
        ->required()
        ->type_name("FILE");
    command.add_option("-o,--output", options->output, "The profile to write; required")
        ->required()
        ->type_name("FILE");
    command.add_option("--version", options->version, "The version of the profile, 1 to 5 (default 5)")
        ->type_name("N")
        ->check(Unnamed(CLI::Range(kFirstVersion, kLastVersion)));
    command
        .add_option_function<std::string>(
            "--intent", [options](const std::string& name) { options->intent = kIntents.at(name); },
            "perceptual (default), relative, saturation or absolute; white stays without ink")
        ->type_name("INTENT")
        ->check(Unnamed(CLI::IsMember(kIntents)));
    command.add_flag("--black-point-compensation", options->blackPointCompensation,
                     "Maps the screen's black to the printer's");
}

void AddTagOptions(CLI::App& command, BuildOptions& options) {
    command
        .add_option("--name", options.name,
                    "The profile's name, 1 to 511 ASCII characters (default: the file's name)")
        ->type_name("TEXT");
    command
        .add_option(
            "--resolution-codes", options.codes,
            "The engine's codes for other resolutions and for 600 dpi, each -128 to 127 (default: the "
            "driver's own)")
        ->type_name("OTHER,600");
}

void AddTreatmentOptions(CLI::App& command, InkTreatment& treatment) {
    command.add_option("--ink-limit", treatment.limit, "All inks together, 100 to 400 percent (default 400)")
        ->type_name("PERCENT")
        ->check(Unnamed(CLI::Range(kLeastInkLimit, kNoInkLimit)));
    command
        .add_option("--scale-600", treatment.scaleAt600,
                    "Scales the variant for 600 dpi, 1 to 200 percent (default 50)")
        ->type_name("PERCENT")
        ->check(Unnamed(CLI::Range(kLeastScale, kLargestScale)));
    command
        .add_option("--scale-other", treatment.scaleOther,
                    "Scales the variant for other resolutions, 1 to 200 percent (default 100)")
        ->type_name("PERCENT")
        ->check(Unnamed(CLI::Range(kLeastScale, kLargestScale)));
}

}  // namespace

void AddBuildCommand(CLI::App& app, std::ostream& out) {
    CLI::App* command = app.add_subcommand("build", "Makes a profile from a printer's ICC CMYK profile");
    const auto options = std::make_shared<BuildOptions>();
    AddSourceOptions(*command, options);
    AddTagOptions(*command, *options);
    AddTreatmentOptions(*command, options->treatment);
    command->callback([&out, options] { Build(*options, out); });
}

}  // namespace orvex::tools::profile
