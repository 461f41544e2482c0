#include "tools/orvexprint/job_options.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/tools/common/thrown_text.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::print {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

JobOptions Parse(const std::vector<std::string>& arguments) {
    std::ostringstream help;
    return ParseJobOptions(arguments, help).value();
}

// Returns the error for a wrong command line.
std::string OptionsComplaint(const std::vector<std::string>& arguments) {
    return ThrownText<OptionError>([&] { Parse(arguments); });
}

// Return the options, or the error, for arguments before an output and a page.
JobOptions WithPage(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"-o", "x", "a.png"});
    return Parse(arguments);
}
std::string Complaint(const std::vector<std::string>& arguments) {
    return ThrownText<OptionError>([&] { WithPage(arguments); });
}

// Returns the settings as "option value".
std::vector<std::string> SettingsOf(const JobOptions& options) {
    std::vector<std::string> settings;
    for (const auto& [setting, value] : options.settings) {
        settings.push_back(setting->option + std::string(" ") + ValueText(*setting, value));
    }
    return settings;
}

}  // namespace

TEST(JobOptions, TakePagesAndAnOutput) {
    const JobOptions options = Parse({"-o", "out.prn", "a.png", "b \xC3\xA4.png"});
    ASSERT_EQ(options.pages.size(), 2u);
    EXPECT_EQ(options.pages[1], PathFromUtf8("b \xC3\xA4.png"));
    EXPECT_EQ(options.output, "out.prn");
    EXPECT_THAT(options.settings, IsEmpty());
    EXPECT_FALSE(options.imageDpi);
    EXPECT_EQ(options.logMask, 0);
}

TEST(JobOptions, TakeNamesThatBeginWithASlash) {
    const JobOptions options = Parse({"/folder/page.png", "-o", "/folder/job.prn"});
    EXPECT_EQ(options.pages, (std::vector<std::filesystem::path>{"/folder/page.png"}));
    EXPECT_EQ(options.output, "/folder/job.prn");
}

TEST(JobOptions, TakeEverySettingInItsUnit) {
    const JobOptions options =
        WithPage({"--dpi", "600", "--align=centre", "--print-head-offset", "-2.5mm", "--rotate180",
                  "--mirror=off", "--brightness", "-100", "--landscape"});
    EXPECT_THAT(SettingsOf(options),
                ElementsAre("--dpi 600 dpi", "--rotate180 on", "--mirror off", "--align centre",
                            "--print-head-offset -2.5 mm", "--brightness -100", "--orientation landscape"));
}

TEST(JobOptions, TakeNoPageForTheValueOfASwitch) {
    const JobOptions options = Parse({"-o", "x", "--kws", "a.png"});
    EXPECT_THAT(options.pages, ElementsAre("a.png"));
    EXPECT_THAT(SettingsOf(options), ElementsAre("--kws on"));
}

TEST(JobOptions, TakeTheLastOfTwoValues) {
    EXPECT_THAT(SettingsOf(WithPage({"--dpi", "300", "--dpi", "600"})), ElementsAre("--dpi 600 dpi"));
    EXPECT_THAT(SettingsOf(WithPage({"--kws", "--kws=off"})), ElementsAre("--kws off"));
}

TEST(JobOptions, TakeThePaper) {
    EXPECT_EQ(WithPage({"--size", "100x150mm"}).size, (PaperSize{1000, 1500}));
    EXPECT_EQ(WithPage({"--label", "Versand 4x6"}).label, "Versand 4x6");
    EXPECT_EQ(Complaint({"--size", "100x150mm", "--label", "x"}), "--size and --label: give one of them");
    const char* const orientations = "--landscape, --portrait and --orientation: give one of them";
    EXPECT_EQ(Complaint({"--landscape", "--portrait"}), orientations);
    EXPECT_EQ(Complaint({"--portrait", "--landscape"}), orientations);
    EXPECT_EQ(Complaint({"--orientation", "landscape", "--portrait"}), orientations);
    EXPECT_EQ(Complaint({"--landscape", "--orientation=landscape"}), orientations);
}

TEST(JobOptions, TakeTheSizeOfTheFirstPageIfNothingElseSaysIt) {
    EXPECT_TRUE(WithPage({}).sizeOfPage);
    EXPECT_TRUE(WithPage({"--size", "page"}).sizeOfPage);
    EXPECT_FALSE(WithPage({"--size", "page"}).size);
    EXPECT_TRUE(WithPage({"--size", "page", "--load-devmode", "l"}).sizeOfPage);
    EXPECT_FALSE(WithPage({"--size", "A4"}).sizeOfPage);
    EXPECT_FALSE(WithPage({"--label", "Shipping"}).sizeOfPage);
    EXPECT_FALSE(WithPage({"--load-devmode", "l"}).sizeOfPage);
    EXPECT_FALSE(Parse({"--test-page", "-o", "x"}).sizeOfPage);
    EXPECT_EQ(OptionsComplaint({"--size", "page", "--test-page", "-o", "x"}),
              "--size page takes the size from the first page, and there is none");
    EXPECT_EQ(Complaint({"--size", "page", "--label", "x"}), "--size and --label: give one of them");
}

TEST(JobOptions, TakeTheRest) {
    const JobOptions options =
        Parse({"--fit",     "--smooth", "--image-dpi",    "203", "--title",        "T", "--profile",  "p.zvp",
               "--install", "i",        "--engine",       "e",   "--printer-data", "d", "--language", "DEU",
               "--log",     "trace",    "--load-devmode", "l",   "--save-devmode", "s", "-o",         "x",
               "a.png"});
    EXPECT_TRUE(options.fit);
    EXPECT_TRUE(options.smooth);
    EXPECT_EQ(options.imageDpi, 203);
    EXPECT_EQ(options.title, "T");
    EXPECT_EQ(options.profile, "p.zvp");
    EXPECT_EQ(options.installation, "i");
    EXPECT_EQ(options.engine, "e");
    EXPECT_EQ(options.printerData, "d");
    EXPECT_EQ(options.language, "DEU");
    EXPECT_EQ(options.logMask, 3);
    EXPECT_EQ(options.loadMode, "l");
    EXPECT_EQ(options.saveMode, "s");
    EXPECT_EQ(WithPage({"--log", "error"}).logMask, 1);
    EXPECT_TRUE(WithPage({"--rotate", "auto"}).turnToFit);
    EXPECT_FALSE(WithPage({"--rotate", "off"}).turnToFit);
}

TEST(JobOptions, NameOptionValueAndRangeOfAWrongValue) {
    EXPECT_EQ(Complaint({"--dpi", "720"}), "--dpi: \"720\" is not allowed; it takes 300 or 600 dpi");
    EXPECT_EQ(Complaint({"--rotate180=maybe"}), "--rotate180: \"maybe\" is not allowed; it takes on or off");
    EXPECT_EQ(Complaint({"--image-dpi", "9"}), "--image-dpi: \"9\" is not allowed; it takes 10 to 10000 dpi");
    EXPECT_EQ(Complaint({"--rotate", "left"}), "--rotate: \"left\" is not allowed; it takes off or auto");
    EXPECT_EQ(Complaint({"--log", "all"}), "--log: \"all\" is not allowed; it takes error, trace or tree");
    EXPECT_EQ(Complaint({"--language", "DE"}),
              "--language: \"DE\" is not allowed; it takes ENG, FRA, DEU, CH, ES, JPN or ENU");
    EXPECT_THAT(Complaint({"--size", "big"}), HasSubstr("--size: \"big\" is not allowed"));
    EXPECT_THAT(Complaint({"--nonsense"}), HasSubstr("--nonsense"));
    EXPECT_THAT(OptionsComplaint({"-o"}), HasSubstr("--output"));
}

TEST(JobOptions, RefuseAnEmptyValue) {
    EXPECT_THAT(Complaint({"--dpi", ""}), HasSubstr("--dpi: \"\" is not allowed"));
    EXPECT_THAT(Complaint({"--size", ""}), HasSubstr("--size: \"\" is not allowed"));
    EXPECT_THAT(Complaint({"--log", ""}), HasSubstr("--log: \"\" is not allowed"));
}

TEST(JobOptions, NeedPagesAndAnOutputToPrint) {
    EXPECT_EQ(OptionsComplaint({"-o", "x"}),
              "no pages: name pictures, EMF or spool files, or ask for the --test-page");
    EXPECT_EQ(OptionsComplaint({"a.png"}), "no output: name a file with -o FILE");
    EXPECT_EQ(OptionsComplaint({"--test-page"}), "no output: name a file with -o FILE");
    EXPECT_EQ(OptionsComplaint({"--test-page", "a.png", "-o", "x"}),
              "--test-page prints no other pages; leave the files out");
    EXPECT_EQ(OptionsComplaint({"--test-page", "-o", "x"}), "");
    for (const char* look : {"--dry-run", "--list"}) EXPECT_EQ(OptionsComplaint({look}), "");
    EXPECT_EQ(OptionsComplaint({"--save-devmode", "x"}), "");
}

TEST(JobOptions, ShowHelpWithGroupsRangesAndExamples) {
    std::ostringstream help;
    EXPECT_FALSE(ParseJobOptions({"--help"}, help));
    // Joins the lines, since the help wraps its texts.
    std::string text;
    std::istringstream words(help.str());
    for (std::string word; words >> word;) text += (text.empty() ? "" : " ") + word;
    for (const char* part :
         {"Usage: orvexprint [options] -o FILE PAGE.png...", "Page:", "Print head:", "Colour:", "Job:",
          "Output:", "Printer and program:", "Examples:", "300 or 600 dpi", "5, 10 or 15 mm",
          "-100.0 to 100.0 mm", "off, leading or trailing", "--rotate180[=off]", "-h,--help"}) {
        EXPECT_THAT(text, HasSubstr(part));
    }
    for (const Setting& setting : Settings()) EXPECT_THAT(text, HasSubstr(setting.option));
    std::istringstream lines(help.str());
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100u) << line;
}

}  // namespace orvex::tools::print
