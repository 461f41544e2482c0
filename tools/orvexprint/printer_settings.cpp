#include "tools/orvexprint/printer_settings.h"

#include <cstring>
#include <fstream>
#include <stdexcept>

#include "driver/config/device_mode_defaults.h"
#include "driver/config/device_mode_merge.h"
#include "driver/profiles/profile_catalogue.h"
#include "driver/profiles/profile_colors.h"
#include "driver/profiles/profile_file.h"
#include "driver/support/text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kBuiltIn[] = "the built-in conversion prints instead";

// Returns the texts of a list in which each has a terminator, and an empty one ends the list.
std::vector<std::string> TextsOf(const WCHAR* list) {
    std::vector<std::string> texts;
    while (list != nullptr && *list != 0) {
        texts.push_back(Utf8(list));
        list += TextLength(list) + 1;
    }
    return texts;
}

void ChooseProfile(DeviceMode& mode, const std::string& name,
                   const std::vector<InstalledProfile>& installed) {
    std::string names;
    for (const InstalledProfile& profile : installed) {
        if (profile.fileName == name) {
            const std::u16string wide = Wide(name);
            CopyText(mode.priv.colorProfile, {AsWchar(wide), wide.size()});
            return;
        }
        names += (names.empty() ? "" : ", ") + profile.fileName;
    }
    throw WrongValue("--profile", name,
                     installed.empty() ? "an installed profile, and none is installed" : names);
}

// Sets the current folder for a while.
class CurrentFolder {
  public:
    explicit CurrentFolder(const fs::path& folder) : before_(fs::current_path()) { fs::current_path(folder); }
    ~CurrentFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

  private:
    fs::path before_;
};

// Reads a profile up to its colors, by the driver's own reader and from the folder in which the driver opens
// it.
ProfileProblem ReadHead(const std::string& path) {
    BlockReader file(path.c_str());
    ProfileHeader header;
    if (const ProfileProblem problem = ReadProfileHeader(file, &header)) return problem;
    TagReader tags(file, kProfileNameCapacity);
    for (ProfileTag tag; tags.Next(&tag);) continue;
    return tags.Problem() ? tags.Problem() : CheckColorsSize(file, header);
}

// Returns in words why the driver refuses the profile; empty if it does not.
std::string ProblemOf(const std::string& name, const fs::path& installation) {
    const CurrentFolder folder(installation);
    const std::string narrow = NarrowFromUtf8(name);
    if (!IsBareFileName(narrow.c_str())) return "it is not in the folder of the profiles";
    const ProfileProblem problem = ReadHead(ORVEX_PROFILES_FOLDER + narrow);
    if (!problem) return {};
    if (problem.fault == &kFileNotOpened) return "there is no such file, or it can't be opened";
    return "it is damaged, or no profile";
}

}  // namespace

PrinterSettings::PrinterSettings(DriverSession& session) : session_(session) {
    session_.AttachProgram();
    const std::u16string name = Wide(session_.Printer().name);
    SetupDefaultDevMode(&defaults_, AsWchar(name), session_.PrinterHandle());
    labels_.resize(kMaxLabels);
    uint32_t count = 0;
    ReadPrinterLabelList(session_.PrinterHandle(), labels_.data(), kMaxLabels, &count);
    labels_.resize(count);
}

std::vector<InstalledProfile> PrinterSettings::Profiles() const {
    HeapArray<WCHAR> fileNames;
    HeapArray<WCHAR> displayNames;
    ListProfiles(nullptr, &fileNames, &displayNames);
    const std::vector<std::string> files = TextsOf(fileNames.get());
    const std::vector<std::string> names = TextsOf(displayNames.get());
    std::vector<InstalledProfile> profiles;
    for (size_t i = 0; i < files.size(); ++i)
        profiles.push_back({files[i], i < names.size() ? names[i] : files[i]});
    return profiles;
}

DeviceMode PrinterSettings::Requested(const JobOptions& options) const {
    DeviceMode mode = options.loadMode.empty() ? defaults_ : LoadDeviceMode(options.loadMode);
    if (options.size) ChoosePaperSize(mode, *options.size, defaults_);
    if (options.label) ChooseLabel(mode, *options.label, labels_);
    if (options.profile) ChooseProfile(mode, *options.profile, Profiles());
    for (const auto& [setting, value] : options.settings) WriteSetting(mode, *setting, value);
    return mode;
}

DeviceMode PrinterSettings::Effective(std::span<const uint8_t> requested) const {
    DeviceMode effective = defaults_;
    std::vector<uint8_t> source(requested.begin(), requested.end());  // the merge may write to it
    MergeDevMode(&effective, reinterpret_cast<DEVMODEW*>(source.data()), session_.PrinterHandle());
    return effective;
}

std::vector<std::string> FallbacksOf(const DeviceMode& mode, const fs::path& installation) {
    std::vector<std::string> lines;
    const auto lacks = [](const fs::path& file, const std::string& problem, const char* instead) {
        return Utf8FromPath(file) + " " + problem + "; " + instead;
    };
    const fs::path settings = installation / "settings.inf", profiles = installation / "profiles";
    if (!std::ifstream(settings))
        lines.push_back(lacks(settings, "can't be read", "the driver's own defaults apply"));
    const WideView wide = FieldText(mode.priv.colorProfile);
    const std::string name = Utf8({reinterpret_cast<const char16_t*>(wide.data()), wide.size()});
    std::error_code ignored;
    if (name.empty()) {
        if (!fs::is_directory(profiles, ignored)) lines.push_back(lacks(profiles, "is not there", kBuiltIn));
    } else if (const std::string problem = ProblemOf(name, installation); !problem.empty()) {
        lines.push_back(lacks(profiles / PathFromUtf8(name), "can't be used: " + problem, kBuiltIn));
    }
    return lines;
}

DeviceMode LoadDeviceMode(const fs::path& path) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path);
    DeviceMode mode;
    if (bytes.size() != sizeof mode) {
        throw std::runtime_error(Utf8FromPath(path) + " is no device mode: it does not have 916 bytes");
    }
    memcpy(&mode, bytes.data(), sizeof mode);
    if (mode.pub.dmSize != sizeof mode.pub || mode.pub.dmDriverExtra != sizeof mode.priv ||
        mode.priv.signature != kPrivateSignature) {
        throw std::runtime_error(Utf8FromPath(path) + " is no device mode of this driver");
    }
    return mode;
}

}  // namespace orvex::tools::print
