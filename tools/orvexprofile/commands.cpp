#include "tools/orvexprofile/commands.h"

#include <charconv>
#include <map>
#include <stdexcept>

#include "tools/orvexprofile/profile_loading.h"
#include "tools/orvexprofile/profile_writer.h"
#include "tools/orvexprofile/report.h"

namespace orvex::tools::profile {

CLI::Validator Unnamed(CLI::Validator check) {
    return check.description("");
}

void AddVariantOption(CLI::App& command, PrintVariant& variant) {
    const std::map<std::string, PrintVariant> variants = {{"600", PrintVariant::kAt600},
                                                          {"other", PrintVariant::kOther}};
    command
        .add_option_function<std::string>(
            "--variant", [&variant, variants](const std::string& name) { variant = variants.at(name); },
            "The variant of the profile: for 600 dpi, or for other resolutions (default)")
        ->type_name("600|other")
        ->check(Unnamed(CLI::IsMember(variants)));
}

ResolutionCodes ParseResolutionCodes(const std::string& text) {
    int codes[2] = {};
    const char* next = text.data();
    const char* const end = next + text.size();
    for (int& code : codes) {
        const auto [stop, error] = std::from_chars(next, end, code);
        const bool last = &code == codes + 1;
        if (error != std::errc() || code < -128 || code > 127 ||
            (last ? stop != end : stop == end || *stop != ',')) {
            throw std::invalid_argument(
                "--resolution-codes takes two numbers from -128 to 127, OTHER,600, not \"" + text + "\"");
        }
        next = stop + 1;
    }
    return {static_cast<int8_t>(codes[0]), static_cast<int8_t>(codes[1])};
}

void WriteAcceptedProfile(const Profile& profile, const std::filesystem::path& path, std::ostream& out) {
    WriteProfileFile(profile, path);
    for (PrintVariant variant : {PrintVariant::kAt600, PrintVariant::kOther}) LoadAccepted(path, variant);
    out << "Wrote " << path.string() << ": version " << profile.version << ", "
        << GroupedNumber(FileSize(profile)) << " bytes, accepted by the driver\n";
    if (profile.name && profile.name->size() > kLongestListedName) {
        out << "The name is longer than " << kLongestListedName
            << " characters: users see the file's name instead, unless profilenames.inf has another.\n";
    }
}

}  // namespace orvex::tools::profile
