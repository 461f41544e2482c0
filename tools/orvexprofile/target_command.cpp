// orvexprofile target -o NAME: makes a chart whose colors address raw amounts of ink, to be printed, measured
// and made into an ICC profile.
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

#include "tools/common/help_format.h"
#include "tools/common/number_text.h"
#include "tools/common/png_writer.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/measurement_list.h"
#include "tools/orvexprofile/profile_writer.h"
#include "tools/orvexprofile/target_pages.h"
#include "tools/orvexprofile/target_patches.h"
#include "tools/orvexprofile/value_checks.h"

namespace orvex::tools::profile {

namespace {

constexpr double kUsualLimit = 300;                 // percent; most stocks take no more
constexpr int kLeastPage = 40, kLargestPage = 420;  // mm
constexpr int kLeastPatch = 4, kLargestPatch = 40;

struct TargetOptions {
    std::string output;
    TargetFormat format;
    double limit = kUsualLimit;
    std::optional<ResolutionCodes> codes;
};

void WritePage(const RasterImage& image, uint32_t pixelsPerInch, const std::filesystem::path& path) {
    PngWriter page(
        path,
        {.width = image.width, .height = image.height, .pixelsPerInch = static_cast<double>(pixelsPerInch)});
    std::vector<uint8_t> samples(size_t{image.width} * 3);
    for (uint32_t y = 0; y < image.height; ++y) {
        for (uint32_t x = 0; x < image.width; ++x) {
            const uint32_t color = image.Row(y)[x];
            StoreColor(&samples[size_t{x} * 3],
                       {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
                        static_cast<uint8_t>(color)});
        }
        page.WriteRow(samples);
    }
    page.Complete();
}

void MakeTarget(const TargetOptions& options, std::ostream& out) {
    if (IsStandardOutput(options.output)) {
        throw std::invalid_argument(
            "-o: a target has several files, and standard output takes one; name where they begin, such as "
            "target");
    }
    const std::vector<TargetPatch> patches = MakeTargetPatches(options.limit);
    const TargetLayout layout(options.format, patches.size());
    Profile profile = MakeTargetProfile(patches);
    profile.codes = options.codes;
    WriteProfileFile(profile, options.output + ".zvp");
    out << "Wrote " << options.output << ".zvp";
    for (size_t page = 0; page < layout.Pages(); ++page) {
        const std::string name = options.output + "-" + std::to_string(page + 1) + ".png";
        WritePage(layout.Draw(patches, page), options.format.pixelsPerInch, name);
        out << ' ' << name;
    }
    WriteWholeFile(options.output + ".ti2", MeasurementList(patches, layout, options.limit));
    out << ' ' << options.output << ".ti2\n"
        << patches.size() << " patches on " << layout.Pages() << (layout.Pages() == 1 ? " page" : " pages")
        << ", in rows of " << layout.Columns() << '\n';
}

void AddFormatOptions(CLI::App& command, const std::shared_ptr<TargetOptions>& options) {
    TargetFormat& format = options->format;
    command.add_option("--width", format.widthMm, "The pages' width, 40 to 420 mm (default 100)")
        ->type_name("MM")
        ->check(NumberFrom(kLeastPage, kLargestPage, "mm"));
    command.add_option("--length", format.lengthMm, "The pages' length, 40 to 420 mm (default 150)")
        ->type_name("MM")
        ->check(NumberFrom(kLeastPage, kLargestPage, "mm"));
    command.add_option("--patch", format.patchMm, "The side of a patch, 4 to 40 mm (default 8)")
        ->type_name("MM")
        ->check(NumberFrom(kLeastPatch, kLargestPatch, "mm"));
    command
        .add_option_function<std::string>(
            "--dpi",
            [options](const std::string& dpi) { options->format.pixelsPerInch = dpi == "600" ? 600 : 300; },
            "The pages' resolution, which must be the job's: 300 (default) or 600")
        ->type_name("300|600")
        ->check(OneOf({"300", "600"}));
}

}  // namespace

void AddTargetCommand(CLI::App& app, std::ostream& out) {
    CLI::App* command = app.add_subcommand(
        "target", "Makes a chart of raw ink amounts to print and measure, with its profile and list");
    const auto options = std::make_shared<TargetOptions>();
    command
        ->add_option(
            "-o,--output", options->output,
            "Where the files' names begin: OUT.zvp is the profile to print through, OUT-1.png and so "
            "on are the pages, OUT.ti2 is the list of the patches' inks; required")
        ->required()
        ->type_name("OUT");
    AddFormatOptions(*command, options);
    command
        ->add_option("--ink-limit", options->limit,
                     "Leaves out patches with more ink than this, 100 to 400 percent (default 300)")
        ->type_name("PERCENT")
        ->check(NumberFrom(kLeastInkLimit, kNoInkLimit, "percent"));
    AddResolutionCodesOption(*command, options->codes);
    command->footer(
        "Print the pages through that profile in their own size, without resampling, colour management or\n"
        "colour adjustment. Measure them in the list's order, make an ICC profile from the list with the\n"
        "measured colours, and build a profile from that.");
    command->callback([&out, options] { MakeTarget(*options, out); });
}

}  // namespace orvex::tools::profile
