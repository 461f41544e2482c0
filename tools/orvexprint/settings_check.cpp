#include <algorithm>
#include <array>

#include "driver/config/label_sizes.h"
#include "driver/config/media_import.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/installation_check.h"
#include "tools/orvexprint/name_search.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

enum class SettingKind { kFlag, kNumber, kText, kLanguage };

struct KnownSetting {
    const char* section;
    const char* key;
    SettingKind kind;
};

// The settings that the driver looks up.
constexpr KnownSetting kSettings[] = {
    {"[Driver]", "Add_Thumb", SettingKind::kFlag},
    {"[Driver]", "thumb_max_width", SettingKind::kNumber},
    {"[Driver]", "thumb_max_height", SettingKind::kNumber},
    {"[UI]", "Default_Media", SettingKind::kText},
    {"[UI]", "Default_Profile", SettingKind::kText},
    {"[UI]", "Language", SettingKind::kLanguage},
    {"[UI]", "Show_Chunked", SettingKind::kFlag},
    {"[Color]", "tone_scale", SettingKind::kNumber},
    {"[Color]", "saturation_scale", SettingKind::kNumber},
    {"[Color]", "brightness_scale", SettingKind::kNumber},
    {"[Color]", "black_scale", SettingKind::kNumber},
    {"[Color]", "yellow_scale", SettingKind::kNumber},
    {"[Color]", "cyan_scale", SettingKind::kNumber},
    {"[Color]", "magenta_scale", SettingKind::kNumber},
};
constexpr std::array kLanguages = {"ENG", "ENU", "DEU", "FRA", "ES", "CH", "JPN"};
constexpr size_t kMostLineBytes = 250;

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    text.remove_suffix(text.size() - std::min(text.find_last_not_of(kBlanks) + 1, text.size()));
    return text;
}

// The lines of a text, each with its number from 1. A line ends with LF, CR or both.
template <typename Take>
void ForEachLine(std::string_view text, Take take) {
    for (size_t number = 1; !text.empty(); ++number) {
        size_t end = std::min(text.find_first_of("\r\n"), text.size());
        take(number, text.substr(0, end));
        if (text.substr(end).starts_with("\r\n")) ++end;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

bool IsReadable(SettingKind kind, std::string_view value) {
    switch (kind) {
        case SettingKind::kFlag:
            return ParseWhole(value).has_value();
        case SettingKind::kNumber:
            return ParseNumber(value).has_value();
        case SettingKind::kLanguage:
            return std::find(kLanguages.begin(), kLanguages.end(), value) != kLanguages.end();
        case SettingKind::kText:
            break;
    }
    return true;
}

std::string Allowed(SettingKind kind) {
    if (kind == SettingKind::kFlag) return "0 or 1";
    if (kind == SettingKind::kNumber) return "a number";
    std::string languages;
    for (const char* language : kLanguages)
        languages += (languages.empty() ? "" : ", ") + std::string(language);
    return "one of " + languages;
}

// Checks the lines of settings.inf one after the other.
class SettingsReader {
  public:
    SettingsReader(std::string file, std::vector<Finding>& findings)
        : file_(std::move(file)), findings_(findings) {}

    void Take(size_t number, std::string_view line) {
        if (line.size() > kMostLineBytes)
            Doubt(number, "has " + std::to_string(line.size()) + " bytes; the driver reads pieces of 253",
                  "keep lines shorter than 250 characters");
        if (line.starts_with('[')) return TakeSection(number, Trimmed(line));
        if (Trimmed(line).empty() || line.starts_with(';')) return;
        const size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            return Doubt(number, "\"" + PrintableText(line, 60) + "\" is no setting",
                         "begin a comment with a semicolon");
        }
        TakeSetting(number, line.substr(0, equals), Trimmed(line.substr(equals + 1)));
    }

  private:
    void Doubt(size_t number, std::string text, std::string advice) {
        findings_.push_back({Verdict::kDoubtful, file_ + ", line " + std::to_string(number), std::move(text),
                             std::move(advice)});
    }

    void TakeSection(size_t number, std::string_view section) {
        section_ = section;
        const bool known = std::any_of(
            std::begin(kSettings), std::end(kSettings),
            [section](const KnownSetting& setting) { return section.starts_with(setting.section); });
        if (!known)
            Doubt(number, "the driver knows no section " + PrintableText(section, 60),
                  "use [Driver], [UI] or [Color]");
        if (std::find(sections_.begin(), sections_.end(), section_) != sections_.end()) {
            Doubt(number, section_ + " is there twice; the driver reads the first one alone",
                  "put the two together");
        }
        sections_.push_back(section_);
    }

    void TakeSetting(size_t number, std::string_view key, std::string_view value) {
        std::vector<std::string> names;  // empty in a section that is unknown, too, which is told already
        for (const KnownSetting& setting : kSettings) {
            if (!section_.starts_with(setting.section)) continue;
            if (key == setting.key) return TakeValue(number, setting, value);
            names.push_back(setting.key);
        }
        if (section_.empty())
            Doubt(number, PrintableText(key, 60) + " comes before the first section", "move it into one");
        if (names.empty()) return;
        Doubt(number, "the driver knows no " + PrintableText(key, 60) + " in " + section_,
              "the nearest is " + NearestNames(key, names, "settings"));
    }

    void TakeValue(size_t number, const KnownSetting& setting, std::string_view value) {
        if (IsReadable(setting.kind, value)) return;
        Doubt(number,
              std::string(setting.key) + ": the driver can't read \"" + PrintableText(value, 60) + "\"",
              "give " + Allowed(setting.kind));
    }

    std::string file_;
    std::vector<Finding>& findings_;
    std::string section_;
    std::vector<std::string> sections_;
};

}  // namespace

std::vector<Finding> CheckSettings(const fs::path& file) {
    const std::string name = Utf8FromPath(file);
    std::vector<Finding> findings;
    std::string text;
    try {
        text = ReadWholeText(file);
    } catch (const std::runtime_error& error) {
        return {{Verdict::kDoubtful, name, error.what(),
                 "install it; without it the driver's own defaults apply"}};
    }
    SettingsReader reader(name, findings);
    ForEachLine(text, [&](size_t number, std::string_view line) { reader.Take(number, line); });
    if (findings.empty())
        findings.push_back({Verdict::kGood, name, "every setting is known and can be read"});
    return findings;
}

std::vector<Finding> CheckMedia(const fs::path& file) {
    const std::string name = Utf8FromPath(file);
    std::string text;
    try {
        text = ReadWholeText(file);
    } catch (const std::runtime_error& error) {
        return {
            {Verdict::kDoubtful, name, error.what(), "install it; without it a new printer has no labels"}};
    }
    std::vector<Finding> findings;
    const size_t bytes = text.size();
    if (bytes > kMaxMediaBytes) text.resize(kMaxMediaBytes);
    const size_t section = text.find(kMediaSection);
    size_t labels = 0, stop = 0, skipped = 0;
    std::string stopLine;
    size_t number = 0;
    for (size_t at = 0; at < text.size(); ++number) {
        const size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = std::string_view(text).substr(at, end - at);
        LabelSize label = {};
        if (section == std::string::npos || at <= section) {
            // before the labels, or their heading
        } else if (stop != 0) {
            skipped += ParseMediaLabel(line, &label) ? 1 : 0;
        } else if (ParseMediaLabel(line, &label)) {
            ++labels;
        } else {
            stop = number + 1;
            stopLine = PrintableText(Trimmed(line), 60);
        }
        at = end + 1;
    }
    if (section == std::string::npos)
        findings.push_back({Verdict::kDoubtful, name,
                            "has no line " + std::string(kMediaSection) + " in its first 4,095 bytes",
                            "put it before the labels"});
    if (bytes > kMaxMediaBytes)
        findings.push_back({Verdict::kDoubtful, name,
                            "has " + GroupedNumber(bytes) + " bytes; the driver reads the first 4,095",
                            "make it shorter, or add the other labels to the printer"});
    if (skipped > 0) {
        findings.push_back({Verdict::kDoubtful, name + ", line " + std::to_string(stop),
                            "\"" + stopLine + "\" ends the import; " + std::to_string(skipped) +
                                (skipped == 1 ? " label is" : " labels are") + " skipped after it",
                            "remove the line, or write it as \"name\", \"width\", \"length\", units"});
    }
    if (findings.empty())
        findings.push_back(
            {Verdict::kGood, name, std::to_string(labels) + " labels for a printer that has none"});
    return findings;
}

}  // namespace orvex::tools::print
