// The commands that write a profile:
// orvexprofile build --icc PRINTER.icc -o FILE.zvp makes one from a printer's ICC profile;
// orvexprofile convert IN.zvp -o OUT.zvp --version N stores the same colors in another version.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "tools/common/help_format.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/conversion.h"
#include "tools/orvexprofile/icc_profile.h"
#include "tools/orvexprofile/ink_statistics.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/predicted_colors.h"
#include "tools/orvexprofile/profile_writer.h"
#include "tools/orvexprofile/value_checks.h"

namespace orvex::tools::profile {

namespace {

struct BuildOptions {
    std::string icc;
    std::string output;
    int version = kLastVersion;
    RenderingIntent intent = RenderingIntent::kPerceptual;
    bool blackPointCompensation = false;
    std::string name;
    std::optional<ResolutionCodes> codes;
    InkTreatment treatment;
};

constexpr int kComparedStep = 5;  // between the component values at which the driver's answer is compared

// A file in memory that has a path as long as it lives.
class MemoryFile {
  public:
    explicit MemoryFile(std::string_view bytes) : descriptor_(memfd_create("profile", MFD_CLOEXEC)) {
        if (descriptor_ < 0) throw std::runtime_error("no file can be made in memory: " + FileReason(errno));
        std::ofstream(Path(), std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::filesystem::path Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

// A profile that the driver's reader has accepted in both variants, to be written and measured.
class AcceptedProfile {
  public:
    explicit AcceptedProfile(const Profile& profile)
        : profile_(profile), bytes_(EncodeProfile(profile)), file_(bytes_) {
        for (PrintVariant variant : kBothVariants) LoadAccepted(Path(), variant);
    }

    // Returns the path of a copy that lives as long as this.
    std::filesystem::path Path() const { return file_.Path(); }

    // Writes the profile, and reports the file and what its version can't keep.
    void Write(const std::filesystem::path& path, std::ostream& report) const {
        WriteWholeFile(path, bytes_);
        report << "Wrote " << path.string() << ": version " << profile_.version << ", "
               << GroupedNumber(bytes_.size()) << " bytes, accepted by the driver\n";
        if (profile_.name && profile_.name->size() > kLongestListedName) {
            report
                << "The name is longer than " << kLongestListedName
                << " characters: users see the file's name instead, unless profilenames.inf has another.\n";
        }
        if (const std::string_view loss = VersionLoss(profile_.version); !loss.empty())
            report << loss << '\n';
    }

  private:
    const Profile& profile_;
    const std::string bytes_;
    const MemoryFile file_;
};

// The ICC profile's own inks for the compared colors, at 100 percent and without limit, and the colors that
// it predicts for them.
struct IccAnswers {
    std::vector<uint32_t> colors = ColorsEvery(kComparedStep);
    std::vector<InkValue> inks;
    std::vector<LabColor> lab;

    IccAnswers(const IccProfile& icc, const std::filesystem::path& path) : inks(colors.size()) {
        icc.Convert(colors, inks);
        lab = PredictedColors(path, PrintVariant::kOther, PaperColor::kScreenWhite).Lab(inks);
    }
};

Profile BuildProfile(const BuildOptions& options, const IccProfile& icc) {
    Profile profile;
    profile.version = options.version;
    const std::filesystem::path file = IsStandardOutput(options.output) ? options.icc : options.output;
    profile.name = options.name.empty() ? file.stem().string() : options.name;
    CheckProfileName(*profile.name);
    profile.codes = options.codes;
    FillVariants(profile, icc.Source(), options.treatment);
    return profile;
}

// Reports how far the driver's answers through the profile at `path` are from those of the ICC profile
// itself: the inks from those that it gives after limit and scale, the colors from those of its own inks. So
// the colors also tell what limit and scale cost.
void ReportAccuracy(std::ostream& report, const std::filesystem::path& path, const BuildOptions& options,
                    const IccAnswers& icc, PrintVariant variant) {
    const double scale =
        variant == PrintVariant::kAt600 ? options.treatment.scaleAt600 : options.treatment.scaleOther;
    std::vector<uint32_t> wanted(icc.colors.size());
    const InkSource answers = [&icc](std::span<const uint32_t>, std::span<uint32_t> inks) {
        std::copy(icc.inks.begin(), icc.inks.end(), inks.begin());
    };
    Treated(answers, options.treatment.limit, scale)(icc.colors, wanted);
    LoadIntoDriver(path, variant);
    const std::vector<uint32_t> printed = PrintedInks(icc.colors);
    ReportDifference(report, "Driver against ICC, " + NameOf(variant), CompareInks(wanted, printed));
    const ColorDifference difference =
        CompareColors(icc.lab, PredictedColors(options.icc, variant, PaperColor::kScreenWhite).Lab(printed));
    report << "    dE2000 of the driver's inks to the ICC profile's own inks, both as the profile predicts "
              "them:\n    mean "
           << DecimalText(difference.mean, 2) << ", 95 % within " << DecimalText(difference.most95, 2)
           << ", largest " << DecimalText(difference.largest, 2) << " at "
           << HexColor(icc.colors[difference.largestAt]) << '\n';
}

void Build(const BuildOptions& options, std::ostream& report) {
    RefuseSharedFiles(std::vector<NamedFile>{{"-o", options.output}},
                      std::vector<NamedFile>{{"--icc", options.icc}});
    const IccProfile icc(options.icc, options.intent, options.blackPointCompensation);
    report << "From " << PrintableText(icc.Description()) << '\n';
    const Profile profile = BuildProfile(options, icc);
    const AcceptedProfile accepted(profile);
    accepted.Write(options.output, report);
    const IccAnswers answers(icc, options.icc);
    for (PrintVariant variant : kBothVariants)
        ReportAccuracy(report, accepted.Path(), options, answers, variant);
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
    command
        .add_option("-o,--output", options->output, "The profile to write, - for standard output; required")
        ->required()
        ->type_name("FILE");
    command.add_option("--version", options->version, "The version of the profile, 1 to 5 (default 5)")
        ->type_name("N")
        ->check(WholeFrom(kFirstVersion, kLastVersion));
    command
        .add_option_function<std::string>(
            "--intent", [options](const std::string& name) { options->intent = kIntents.at(name); },
            "perceptual (default), relative, saturation or absolute; white stays without ink")
        ->type_name("INTENT")
        ->check(OneOf({"perceptual", "relative", "saturation", "absolute"}));
    command.add_flag("--black-point-compensation", options->blackPointCompensation,
                     "Maps the screen's black to the printer's");
}

void AddTagOptions(CLI::App& command, BuildOptions& options) {
    command
        .add_option(
            "--name", options.name,
            "The profile's name, 1 to 511 ASCII characters (default: the file's name, or that of the ICC "
            "profile if there is no file)")
        ->type_name("TEXT");
    AddResolutionCodesOption(command, options.codes);
}

void AddTreatmentOptions(CLI::App& command, InkTreatment& treatment) {
    command.add_option("--ink-limit", treatment.limit, "All inks together, 100 to 400 percent (default 400)")
        ->type_name("PERCENT")
        ->check(NumberFrom(kLeastInkLimit, kNoInkLimit, "percent"));
    command
        .add_option("--scale-600", treatment.scaleAt600,
                    "Scales the variant for 600 dpi, 1 to 200 percent (default 50)")
        ->type_name("PERCENT")
        ->check(NumberFrom(kLeastScale, kLargestScale, "percent"));
    command
        .add_option("--scale-other", treatment.scaleOther,
                    "Scales the variant for other resolutions, 1 to 200 percent (default 100)")
        ->type_name("PERCENT")
        ->check(NumberFrom(kLeastScale, kLargestScale, "percent"));
}

struct ConvertOptions {
    std::string input;
    std::string output;
    int version = kLastVersion;
    int step = 1;
};

// Reports the loss, and the difference to what the driver printed before if that was not what the profile
// means.
void ReportLoss(std::ostream& report, const std::string& input, const std::filesystem::path& converted,
                PrintVariant variant, std::span<const uint32_t> colors) {
    const ConversionLoss loss = MeasureLoss(input, converted, variant, colors);
    ReportDifference(report, "Loss, " + NameOf(variant), loss.meant);
    if (PrintsAsMeant(loss.fromVersion)) return;
    ReportDifference(report, "Against what the driver printed before, " + NameOf(variant), loss.printed);
}

void Convert(const ConvertOptions& options, std::ostream& report) {
    RefuseSharedFiles(std::vector<NamedFile>{{"-o", options.output}},
                      std::vector<NamedFile>{{"the profile", options.input}});
    const Profile profile = ConvertProfile(options.input, options.version);
    const AcceptedProfile accepted(profile);
    accepted.Write(options.output, report);
    const std::vector<uint32_t> colors = ColorsEvery(options.step);
    for (PrintVariant variant : kBothVariants)
        ReportLoss(report, options.input, accepted.Path(), variant, colors);
}

}  // namespace

void AddBuildCommand(CLI::App& app, std::ostream& out, std::ostream& err) {
    CLI::App* command = app.add_subcommand("build", "Makes a profile from a printer's ICC CMYK profile");
    const auto options = std::make_shared<BuildOptions>();
    AddSourceOptions(*command, options);
    AddTagOptions(*command, *options);
    AddTreatmentOptions(*command, options->treatment);
    command->footer(
        "Tells in the end how far the driver's inks are from those of the ICC profile, and the dE2000 "
        "between\n"
        "the colours that the ICC profile predicts for the driver's inks and for its own, without limit.");
    command->callback(
        [&out, &err, options] { Build(*options, IsStandardOutput(options->output) ? err : out); });
}

void AddConvertCommand(CLI::App& app, std::ostream& out, std::ostream& err) {
    CLI::App* command =
        app.add_subcommand("convert", "Turns a profile into one of another version, and tells the loss");
    const auto options = std::make_shared<ConvertOptions>();
    command->add_option("FILE", options->input, "The profile to convert")->required()->type_name("");
    command
        ->add_option("-o,--output", options->output, "The profile to write, - for standard output; required")
        ->required()
        ->type_name("FILE");
    command
        ->add_option("--version", options->version, "The version of the profile to write, 1 to 5; required")
        ->type_name("N")
        ->required()
        ->check(WholeFrom(kFirstVersion, kLastVersion));
    command
        ->add_option("--compare-every", options->step,
                     "Compares at every so many values of each component, 1 to 85 (default 1: every colour)")
        ->type_name("N")
        ->check(WholeFrom(1, 85));
    command->callback(
        [&out, &err, options] { Convert(*options, IsStandardOutput(options->output) ? err : out); });
}

}  // namespace orvex::tools::profile
