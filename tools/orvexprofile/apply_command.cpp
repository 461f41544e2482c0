// orvexprofile apply IN.png OUT.png...: shows a picture as the driver would print it.
#include <array>
#include <memory>

#include "tools/common/png_file.h"
#include "tools/orvexprofile/commands.h"
#include "tools/orvexprofile/ink_preview.h"
#include "tools/orvexprofile/profile_loading.h"

namespace orvex::tools::profile {

namespace {

struct ApplyOptions {
    std::string picture;
    std::vector<std::string> outputs;
    std::string profile;
    PrintVariant variant = PrintVariant::kOther;
};

// Returns the names of the composite and of the inks' pictures. If only the composite's is given, the inks'
// are made from it.
std::array<std::filesystem::path, 1 + kInks> OutputNames(const std::vector<std::string>& given) {
    std::array<std::filesystem::path, 1 + kInks> names;
    if (given.size() == names.size()) {
        std::copy(given.begin(), given.end(), names.begin());
        return names;
    }
    if (given.size() != 1) {
        throw std::invalid_argument(
            "apply writes one composite, or five pictures: composite, K, C, M and Y; not " +
            std::to_string(given.size()));
    }
    names[0] = given[0];
    for (size_t ink = 0; ink < kInks; ++ink) {
        names[1 + ink] =
            names[0].parent_path() / (names[0].stem().string() + "-" + kInkLetters[ink] + ".png");
    }
    return names;
}

void Apply(const ApplyOptions& options, std::ostream& out) {
    const auto names = OutputNames(options.outputs);
    const RasterImage picture = LoadPng(options.picture);
    if (options.profile.empty()) {
        LoadGenericIntoDriver(options.variant);
    } else {
        LoadAccepted(options.profile, options.variant);
    }
    const InkPictures print = PrintPicture(picture, options.variant);
    SavePng(print.composite, print.pixelsPerInch, names[0]);
    for (size_t ink = 0; ink < kInks; ++ink) SavePng(print.inks[ink], print.pixelsPerInch, names[1 + ink]);
    out << "Wrote";
    for (const auto& name : names) out << ' ' << name.string();
    out << '\n';
}

}  // namespace

void AddApplyCommand(CLI::App& app, std::ostream& out) {
    CLI::App* command = app.add_subcommand("apply", "Shows a picture as the driver would print it");
    const auto options = std::make_shared<ApplyOptions>();
    command->add_option("IN", options->picture, "The picture, a PNG file")->required()->type_name("");
    command
        ->add_option("OUT", options->outputs,
                     "The composite to write; the inks' pictures stand beside it as OUT-K.png, OUT-C.png, "
                     "OUT-M.png and "
                     "OUT-Y.png, unless named too, in this order")
        ->required()
        ->type_name("");
    command
        ->add_option("--profile", options->profile,
                     "The profile to print through (default: the driver's built-in conversion)")
        ->type_name("FILE");
    AddVariantOption(*command, options->variant);
    command->callback([&out, options] { Apply(*options, out); });
}

}  // namespace orvex::tools::profile
