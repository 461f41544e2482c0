#include "tests/plain/driver/profile_list.h"

#include "tests/plain/driver/profile_head.h"
#include "tests/plain/driver/settings_text.h"

namespace orvex::plain {

namespace {

struct Language {
    const char* section;
    std::string inSettings;  // the beginning of a value that chooses it
    std::string ofSystem;
};
const Language kLanguages[] = {
    {"[ENG]", "ENG", "ENG"}, {"[ENU]", "ENU", "ENU"}, {"[DEU]", "DEU", "DEU"}, {"[FRA]", "FR", "FRA"},
    {"[ES]", "E", "ES"},     {"[CH]", "CH", "CH"},    {"[JPN]", "JPN", "JPN"},
};

std::string LanguageSection(const Installation& installation, Log& log) {
    const std::string value = SettingText(installation, "[UI]", "Language=", 20, log);
    if (!value.empty()) {
        log.Info("settings lang:%s", value.c_str());
        for (const Language& each : kLanguages) {
            if (value.starts_with(each.inSettings)) return each.section;
        }
    }
    log.Info("GetLocaleInfo lang:%s", installation.language.c_str());
    for (const Language& each : kLanguages) {
        if (installation.language.starts_with(each.ofSystem)) return each.section;
    }
    return "[ENU]";
}

// Returns the localized name of a profile. Lines end with CR LF and are shorter than 253 characters.
std::string LocalizedName(const Installation& installation, const std::string& section,
                          const std::string& file) {
    if (!installation.names) return "";
    bool inSection = false;
    const std::string& text = *installation.names;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find("\r\n", at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 2;
        if (line.starts_with("[")) {
            if (inSection) return "";
            inSection = line.starts_with(section);
        } else if (inSection && line.starts_with(file + "=") && line.size() > file.size() + 1) {
            return line.substr(file.size() + 1);
        }
    }
    return "";
}

void LogDisplayName(const Installation& installation, const std::string& section, const std::string& name,
                    const SparseFile& file, Log& log) {
    const std::string path = installation.folder + "\\profiles\\" + name;
    log.Error("GetQRVProfileName [%s] [%s]", name.c_str(), path.c_str());
    ReadHead(&file, path, name, 100, false, false, log);
    const std::string localized = LocalizedName(installation, section, name);
    if (!localized.empty()) log.Error("QRV_GetProfileFieldW [%s] [%s]", name.c_str(), localized.c_str());
}

}  // namespace

std::string DefaultProfile(const Installation& installation, Log& log) {
    if (!installation.found) {
        log.Error("Error: could get app path");
        return "";
    }
    const std::string section = LanguageSection(installation, log);
    for (const auto& [name, file] : installation.profiles) {
        LogDisplayName(installation, section, name, file, log);
    }
    const std::string wanted = Trimmed(SettingText(installation, "[UI]", "Default_Profile=", 254, log));
    if (installation.profiles.contains(wanted)) return wanted;
    return installation.profiles.empty() ? "" : installation.profiles.begin()->first;
}

}  // namespace orvex::plain
