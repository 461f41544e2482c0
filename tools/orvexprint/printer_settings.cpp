#include "tools/orvexprint/printer_settings.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "driver/config/device_mode_defaults.h"
#include "driver/config/device_mode_merge.h"
#include "driver/profiles/profile_catalogue.h"
#include "driver/profiles/profile_colors.h"
#include "driver/profiles/profile_file.h"
#include "driver/support/text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/device_mode_file.h"
#include "tools/orvexprint/name_search.h"

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

// Returns the installed profile whose file or display name this is, or is in any case; null if there is none.
const InstalledProfile* FindProfile(const std::string& name, const std::vector<InstalledProfile>& installed) {
    const std::string small = InSmallLetters(name);
    const std::function<bool(const InstalledProfile&)> matches[] = {
        [&](const InstalledProfile& profile) { return profile.fileName == name; },
        [&](const InstalledProfile& profile) { return profile.displayName == name; },
        [&](const InstalledProfile& profile) {
            return InSmallLetters(profile.fileName) == small || InSmallLetters(profile.displayName) == small;
        }};
    for (const auto& match : matches) {
        const auto found = std::find_if(installed.begin(), installed.end(), match);
        if (found != installed.end()) return &*found;
    }
    return nullptr;
}

OptionError UnknownProfile(const std::string& name, const std::vector<InstalledProfile>& installed) {
    std::vector<std::string> names;
    for (const InstalledProfile& profile : installed) {
        names.push_back(profile.displayName);
        if (profile.fileName != profile.displayName) names.push_back(profile.fileName);
    }
    return WrongValue("--profile", name,
                      names.empty() ? "the path of a profile, since none is installed"
                                    : "the path of a profile, or the name of an installed one: " +
                                          NearestNames(name, std::move(names), "names"));
}

// Chooses an installed profile, or installs a file for this run.
void ChooseProfile(DeviceMode& mode, const std::string& name, const std::vector<InstalledProfile>& installed,
                   ShellAnswers& shell) {
    std::string fileName;
    std::error_code ignored;
    if (const InstalledProfile* const profile = FindProfile(name, installed)) {
        fileName = profile->fileName;
    } else if (const fs::path path = PathFromUtf8(name); fs::is_regular_file(path, ignored)) {
        fileName = Utf8FromPath(path.filename());
        shell.LendFile(ORVEX_PROFILES_FOLDER + NarrowFromUtf8(fileName), AbsolutePath(path));
    } else {
        throw UnknownProfile(name, installed);
    }
    const std::u16string wide = Wide(fileName);
    CopyText(mode.priv.colorProfile, {AsWchar(wide), wide.size()});
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

}  // namespace

std::string ProfileProblemText(const std::string& name, const fs::path& installation) {
    const CurrentFolder folder(installation);
    const std::string narrow = NarrowFromUtf8(name);
    if (!IsBareFileName(narrow.c_str())) return "it is not in the folder of the profiles";
    const ProfileProblem problem = ReadHead(ORVEX_PROFILES_FOLDER + narrow);
    if (!problem) return {};
    if (problem.fault == &kFileNotOpened) return "there is no such file, or it can't be opened";
    return "it is damaged, or no profile";
}

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
    DeviceMode mode = options.loadMode.empty() ? defaults_
                                               : AsDriversOwn(ReadDeviceMode(options.loadMode).bytes,
                                                              Utf8FromPath(options.loadMode));
    if (options.size) ChoosePaperSize(mode, *options.size, defaults_);
    if (options.label) ChooseLabel(mode, *options.label, labels_);
    if (options.profile) ChooseProfile(mode, *options.profile, Profiles(), session_.Shell());
    for (const auto& [setting, value] : options.settings) WriteSetting(mode, *setting, value);
    return mode;
}

DeviceMode PrinterSettings::Effective(std::span<const uint8_t> requested) const {
    DeviceMode effective = defaults_;
    std::vector<uint8_t> source = WithDeclaredSize(requested);  // the merge may write to it
    MergeDevMode(&effective, reinterpret_cast<DEVMODEW*>(source.data()), session_.PrinterHandle());
    return effective;
}

std::vector<std::string> FallbacksOf(const DeviceMode& mode, const fs::path& installation,
                                     const fs::path& lentProfile) {
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
    } else if (const std::string problem = ProfileProblemText(name, installation); !problem.empty()) {
        lines.push_back(lacks(lentProfile.empty() ? profiles / PathFromUtf8(name) : lentProfile,
                              "can't be used: " + problem, kBuiltIn));
    }
    return lines;
}

}  // namespace orvex::tools::print
