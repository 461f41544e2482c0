// orvexprofile proof ART --icc PRINTER.icc -o proof.png: shows what the print of a picture will look like, by
// the printer's ICC profile.
#include <algorithm>
#include <memory>
#include <vector>

#include "tools/common/help_format.h"
#include "tools/common/number_text.h"
#include "tools/common/png_file.h"
#include "tools/common/png_writer.h"
#include "tools/common/whole_file.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/loaded_profile.h"
#include "tools/orvexprofile/predicted_colors.h"
#include "tools/orvexprofile/print_pictures.h"
#include "tools/orvexprofile/value_checks.h"

namespace orvex::tools::profile {

namespace {

struct ProofOptions {
    std::string art;
    std::string profile;
    std::string icc;
    std::string output;
    PaperColor paper = PaperColor::kScreenWhite;
    PrintVariant variant = PrintVariant::kOther;
};

// Writes the proof row by row, and returns the number of pixels with more ink than the ICC profile knows.
uint64_t WriteProof(PngReader& art, const PredictedColors& colors, const std::filesystem::path& path) {
    const PictureSize size = art.Size();
    PngWriter proof(path, {.width = size.width,
                           .height = size.height,
                           .pixelsPerInch = PixelsPerInchOf(size.density),
                           .srgb = true});
    std::vector<uint32_t> pixels(size.width);
    std::vector<uint8_t> samples(size_t{size.width} * 3);
    uint64_t beyondFull = 0;
    for (uint32_t y = 0; y < size.height; ++y) {
        art.ReadRow(pixels.data());
        const std::vector<InkValue> inks = PrintedInks(pixels);
        colors.Srgb(inks, samples);
        proof.WriteRow(samples);
        beyondFull += static_cast<uint64_t>(std::count_if(
            inks.begin(), inks.end(), [&colors](InkValue value) { return colors.IsBeyondFull(value); }));
    }
    proof.Complete();
    return beyondFull;
}

void Proof(const ProofOptions& options, std::ostream& report) {
    RefuseSharedFiles(
        std::vector<NamedFile>{{"-o", options.output}},
        std::vector<NamedFile>{
            {"the picture", options.art}, {"--profile", options.profile}, {"--icc", options.icc}});
    const PredictedColors colors(options.icc, options.variant, options.paper);
    PngReader art = OpenPng(options.art);
    LoadForPrint(options.profile, options.variant);
    const uint64_t beyondFull = WriteProof(art, colors, options.output);
    report << "Wrote " << options.output << ": "
           << (options.paper == PaperColor::kOwn ? "absolute colorimetric, on the paper's own colour"
                                                 : "relative colorimetric, on white")
           << '\n';
    if (beyondFull > 0) {
        report << GroupedNumber(beyondFull)
               << " pixels get more ink than the ICC profile's full amount and are shown with that\n";
    }
}

}  // namespace

void AddProofCommand(CLI::App& app, std::ostream& out, std::ostream& err) {
    CLI::App* command =
        app.add_subcommand("proof", "Shows what the print of a picture will look like, by an ICC profile");
    const auto options = std::make_shared<ProofOptions>();
    command->add_option("ART", options->art, "The picture, a PNG file with sRGB colours; - is standard input")
        ->required()
        ->type_name("");
    command
        ->add_option("--profile", options->profile,
                     "The profile to print through (default: the driver's built-in conversion)")
        ->type_name("FILE");
    command
        ->add_option("--icc", options->icc,
                     "The ICC CMYK profile of the printer, which tells the colours of its inks; required")
        ->required()
        ->type_name("FILE");
    command->add_flag_callback(
        "--paper", [options] { options->paper = PaperColor::kOwn; },
        "Shows the paper's own colour too (absolute colorimetric); otherwise paper is white (relative "
        "colorimetric)");
    AddVariantOption(*command, options->variant);
    command
        ->add_option("-o,--output", options->output, "The PNG file to write, - for standard output; required")
        ->required()
        ->type_name("FILE");
    command->footer(
        "The picture's pixels are taken for sRGB; a colour profile embedded in it is ignored. The inks are "
        "those\n"
        "that the driver prints, with the profile's ink limit and scale. Full ink is the amount 255, and "
        "half "
        "of\n"
        "that at 600 dpi, where four dots take the place of one.");
    command->callback(
        [&out, &err, options] { Proof(*options, IsStandardOutput(options->output) ? err : out); });
}

}  // namespace orvex::tools::profile
