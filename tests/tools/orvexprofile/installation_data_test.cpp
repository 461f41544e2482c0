// The installed text files, read by the driver's own readers.
#include <gmock/gmock.h>

#include <sstream>

#include "driver/config/media_import.h"
#include "driver/profiles/profile_catalogue.h"
#include "driver/support/settings_file.h"
#include "driver/support/text.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::profile {

namespace {

const std::filesystem::path kInstallation = ORVEX_INSTALLATION;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line.substr(0, line.find('\r')));
    return lines;
}

// The installation folder as it is shipped, with one setting changed.
class ShippedInstallation : public testing::Test {
  protected:
    ShippedInstallation() {
        std::filesystem::copy(
            kInstallation, installation_.Folder(),
            std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
    }
    void UseSettings(std::string text) const { installation_.WriteSettings(text); }
    std::string Settings() const { return ReadBytes(kInstallation / "settings.inf"); }

    InstallationFixture installation_;
};

struct Setting {
    const char* section;
    const char* key;
    const char* shipped;  // the value that is set; null when the key is commented out
    const char* comment;  // the value after the semicolon
};

constexpr Setting kSettings[] = {
    {"[Driver]", "Add_Thumb=", "0", nullptr},
    {"[Driver]", "thumb_max_width=", nullptr, "800"},
    {"[Driver]", "thumb_max_height=", nullptr, "600"},
    {"[UI]", "Default_Media=", nullptr, "Label 100 x 150 mm"},
    {"[UI]", "Default_Profile=", "neutral.zvp", nullptr},
    {"[UI]", "Language=", nullptr, "ENG"},
    {"[UI]", "Show_Chunked=", "0", nullptr},
    {"[Color]", "tone_scale=", nullptr, "100"},
    {"[Color]", "saturation_scale=", nullptr, "100"},
    {"[Color]", "brightness_scale=", nullptr, "100"},
    {"[Color]", "black_scale=", nullptr, "200"},
    {"[Color]", "yellow_scale=", nullptr, "100"},
    {"[Color]", "cyan_scale=", nullptr, "100"},
    {"[Color]", "magenta_scale=", nullptr, "100"},
};

std::string Trimmed(std::string text) {
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.pop_back();
    return text;
}

TEST_F(ShippedInstallation, SetsEachKeyToItsDefaultOrNotAtAll) {
    for (const Setting& setting : kSettings) {
        char value[254];
        LookupString(setting.section, setting.key, value, sizeof(value));
        EXPECT_EQ(Trimmed(value), setting.shipped ? setting.shipped : "") << setting.key;
    }
}

TEST_F(ShippedInstallation, ReadsEveryKeyOnceItsSemicolonIsRemoved) {
    std::string text = Settings();
    for (const Setting& setting : kSettings) {
        if (setting.comment == nullptr) continue;
        const size_t place = text.find(std::string("\n;") + setting.key);
        ASSERT_NE(place, std::string::npos) << setting.key;
        text.erase(place + 1, 1);
    }
    UseSettings(text);
    for (const Setting& setting : kSettings) {
        char value[254];
        EXPECT_GT(LookupString(setting.section, setting.key, value, sizeof(value)), 0u) << setting.key;
        EXPECT_EQ(Trimmed(value), setting.comment ? setting.comment : setting.shipped) << setting.key;
    }
}

TEST(InstalledTexts, AreShortLinesThatEndInCrLf) {
    for (const char* file : {"settings.inf", "media.inf"}) {
        const std::string text = ReadBytes(kInstallation / file);
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), std::count(text.begin(), text.end(), '\r'));
        for (const std::string& line : Lines(text)) EXPECT_LE(line.size(), 250u);
    }
}

// Returns the labels that the driver adds from a media.inf, as it logs them: "Add name width length units".
std::vector<std::string> ImportedLabels(const std::filesystem::path& folder) {
    LogCapture log(1);
    EXPECT_EQ(ImportMediaFile(nullptr, AsWchar(WindowsPath(folder))), 1);
    std::vector<std::string> labels;
    for (const std::string& line : log.TakeLines()) {
        if (line.starts_with("[Error] Add ")) labels.push_back(line.substr(12));
    }
    return labels;
}

TEST(InstalledLabels, AreAllImported) {
    const std::string text = ReadBytes(kInstallation / "media.inf");
    EXPECT_LE(text.size(), 4095u);
    const std::vector<std::string> lines = Lines(text);
    const auto heading = std::find(lines.begin(), lines.end(), "[Media]");
    ASSERT_NE(heading, lines.end());
    const std::vector<std::string> labels = ImportedLabels(kInstallation);
    EXPECT_EQ(labels.size(), static_cast<size_t>(lines.end() - heading - 1));
    EXPECT_GE(labels.size(), 30u);
    EXPECT_EQ(labels.front(), "Label 100 x 150 mm 100 150 0");
    EXPECT_EQ(labels.back(), "Half sheet 5.5 x 8.5 in 5.5 8.5 1");
    EXPECT_LE(labels.size(), 128u) << "more than a printer's list is read for";
}

TEST(InstalledLabels, AreNamedByTheirSizeAndFitThePrinter) {
    for (const std::string& label : ImportedLabels(kInstallation)) {
        SCOPED_TRACE(label);
        std::vector<std::string> words;
        std::istringstream in(label);
        for (std::string word; in >> word;) words.push_back(word);
        ASSERT_GE(words.size(), 8u);
        const size_t end = words.size();
        const std::string &width = words[end - 3], &length = words[end - 2], &units = words[end - 1];
        EXPECT_EQ(words[end - 7] + words[end - 6] + words[end - 5], width + "x" + length);
        EXPECT_EQ(words[end - 4], units == "0" ? "mm" : "in");
        const double scale = units == "0" ? 10 : 254;
        EXPECT_GE(std::stod(width) * scale, 254);
        EXPECT_LT(std::stod(width) * scale, 2971);
        EXPECT_GE(std::stod(length) * scale, 254);
        EXPECT_LT(std::stod(length) * scale, 9018);
    }
}

TEST(InstalledLabels, HaveDistinctNamesAndIncludeTheSuggestedDefault) {
    std::vector<std::string> labels = ImportedLabels(kInstallation);
    EXPECT_THAT(labels, testing::Contains("Label 100 x 150 mm 100 150 0"));
    std::sort(labels.begin(), labels.end());
    EXPECT_EQ(std::adjacent_find(labels.begin(), labels.end()), labels.end());
}

std::vector<std::string> Names(const HeapArray<WCHAR>& list) {
    std::vector<std::string> names;
    if (!list) return names;
    for (const WCHAR* next = list.get(); *next != 0; next += TextLength(next) + 1)
        names.push_back(Utf8(next));
    return names;
}

struct LocalNames {
    const char* language;
    const char* coated;
    const char* neutral;
};

constexpr LocalNames kLocalNames[] = {
    {"ENG", "Coated paper (limited ink)", "Neutral"},
    {"FRA", "Papier couché (encrage limité)", "Neutre"},
    {"DEU", "Gestrichenes Papier (begrenzter Farbauftrag)", "Neutral"},
    {"CH", "涂布纸（限制总墨量）", "中性"},
    {"ES", "Papel estucado (tinta limitada)", "Neutro"},
    {"JPN", "コート紙（総インク量制限）", "ニュートラル"},
    {"ENU", "Coated paper (limited ink)", "Neutral"},
};

TEST_F(ShippedInstallation, NamesItsProfilesInSevenLanguages) {
    for (const LocalNames& names : kLocalNames) {
        SCOPED_TRACE(names.language);
        UseSettings(std::string("[UI]\r\nLanguage=") + names.language + "\r\n");
        HeapArray<WCHAR> files, shown;
        ASSERT_EQ(ListProfiles(nullptr, &files, &shown), 1);
        std::vector<std::string> found;
        const std::vector<std::string> fileNames = Names(files), shownNames = Names(shown);
        ASSERT_EQ(fileNames.size(), shownNames.size());
        for (size_t i = 0; i < fileNames.size(); ++i) found.push_back(fileNames[i] + "=" + shownNames[i]);
        EXPECT_THAT(found, testing::UnorderedElementsAre(std::string("coated.zvp=") + names.coated,
                                                         std::string("neutral.zvp=") + names.neutral));
    }
}

TEST(InstalledNames, AreUtf16WithItsMark) {
    const std::string bytes = ReadBytes(kInstallation / "profilenames.inf");
    EXPECT_EQ(bytes.substr(0, 4), std::string("\xFF\xFE[\0", 4));
    EXPECT_EQ(bytes.size() % 2, 0u);
}

}  // namespace

}  // namespace orvex::tools::profile
