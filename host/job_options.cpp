#include "host/job_options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <deque>

#include "host/help_format.h"
#include "host/number_text.h"
#include "host/wide_text.h"

namespace {

constexpr char kDescription[] =
    "Prints PNG pages through the Orvex Series driver and writes what the printer would get into a file.\n";
constexpr char kExamples[] = R"(Examples:
  orvexprint -o label.prn label.png
      prints a page at its real size, on the printer's default label
  orvexprint --size 100x150mm --dpi 600 -o label.prn front.png back.png
      two pages on a label of 100 mm by 150 mm at 600 dpi
  orvexprint --label "Shipping 4x6" --align centre --fit -o label.prn photo.png
      a label of the printer's list (see --list), the picture scaled to it
  orvexprint --size 60x40mm --purge-bar leading --dry-run
      how the page would lie under the print head; nothing is printed
  orvexprint --test-page --log trace -o test.prn
      the self-test page, with the driver's own account of the job
)";

constexpr char kPages[] = "Page";
constexpr char kColour[] = "Colour";
constexpr char kOutput[] = "Output";
constexpr char kPrinter[] = "Printer";

constexpr int kLeastImageDpi = 10;
constexpr int kMostImageDpi = 10000;
constexpr const char* kLanguages[] = {"ENG", "FRA", "DEU", "CH", "ES", "JPN", "ENU"};
constexpr char kLanguageRange[] = "ENG, FRA, DEU, CH, ES, JPN or ENU";

// Texts as they stand on the command line, before they are checked.
struct RawOptions {
    std::vector<std::string> pages;
    std::string imageDpi, title, output, installation, engine, printerData, language, log;
    std::string loadMode, saveMode, size, label, profile;
    bool landscape = false;
    bool portrait = false;
    std::deque<std::pair<const Setting*, std::string>> settings;
};

CLI::Option* Add(CLI::App& app, const char* name, std::string& text, const char* type, const char* group,
                 const std::string& help) {
    return app.add_option(name, text, help)->type_name(type)->group(group)->take_last();
}

void AddSetting(CLI::App& app, RawOptions& raw, const Setting& setting) {
    std::string& text = raw.settings.emplace_back(&setting, "").second;
    const std::string help = std::string(setting.help) + " (" + RangeText(setting) + ")";
    if (setting.IsSwitch()) {
        app.add_flag(setting.option, text, setting.help)
            ->type_name("[=off]")
            ->group(setting.group)
            ->take_last();
    } else {
        Add(app, setting.option, text, setting.words.empty() ? "N" : "WORD", setting.group, help);
    }
}

void AddPageOptions(CLI::App& app, RawOptions& raw, JobOptions& options) {
    app.add_option("PAGE", raw.pages, "PNG files, a page each, printed in that order at their real size")
        ->type_name("FILE")
        ->group(kPages);
    app.add_flag("--test-page", options.testPage, "print the built-in self-test page instead of files")
        ->group(kPages);
    Add(app, "--size", raw.size, "WxH", kPages,
        "width and length of the label, in mm or in (" + PaperText(kLeastPaper) + " to " +
            PaperText(kMostPaper) + ")");
    Add(app, "--label", raw.label, "NAME", kPages, "a label of the printer's list instead; see --list");
    app.add_flag("--landscape", raw.landscape, "turn the page: its longer side runs across")->group(kPages);
    app.add_flag("--portrait", raw.portrait, "undo that where a loaded device mode says so")->group(kPages);
    app.add_flag("--fit", options.fit, "scale each page to the largest size that the label holds")
        ->group(kPages);
    app.add_flag("--smooth", options.smooth,
                 "blend pixels where a page is enlarged, for photographs; bars and text stay "
                 "sharper without")
        ->group(kPages);
    Add(app, "--image-dpi", raw.imageDpi, "N", kPages,
        "resolution of pages that name none themselves (10 to 10000 dpi); without it the job's own");
}

void AddOutputOptions(CLI::App& app, RawOptions& raw, JobOptions& options) {
    Add(app, "-o,--output", raw.output, "FILE", kOutput,
        "where the print file goes; it appears when it is complete");
    Add(app, "--title", raw.title, "NAME", kOutput, "name of the job; without it the first page's");
    app.add_flag("--dry-run", options.dryRun, "show the settings and where the page lies, and print nothing")
        ->group(kOutput);
    app.add_flag("--list", options.list, "list the printer's labels and colour profiles")->group(kOutput);
    Add(app, "--load-devmode", raw.loadMode, "FILE", kOutput,
        "begin with the settings of a device mode file (916 bytes)");
    Add(app, "--save-devmode", raw.saveMode, "FILE", kOutput, "write the job's settings into such a file");
}

void AddPrinterOptions(CLI::App& app, RawOptions& raw) {
    Add(app, "--install", raw.installation, "DIR", kPrinter,
        "installation folder of the driver; without it the folder \"install\" beside this program");
    Add(app, "--engine", raw.engine, "FILE", kPrinter,
        "raster library to print with; without it the hpcrlib.dll of the installation folder, or the one "
        "beside this "
        "program");
    Add(app, "--printer-data", raw.printerData, "FILE", kPrinter,
        "keep the printer's label list in this file from run to run");
    Add(app, "--language", raw.language, "CODE", kPrinter,
        std::string("language of profile names (") + kLanguageRange + "), where settings.inf names none");
    Add(app, "--log", raw.log, "LEVEL", kPrinter, "turn the driver's log on for this run (error or trace)");
}

void CheckWords(const RawOptions& raw, JobOptions& options) {
    if (!raw.imageDpi.empty()) {
        options.imageDpi = ParseWhole(raw.imageDpi);
        if (!options.imageDpi || *options.imageDpi < kLeastImageDpi || *options.imageDpi > kMostImageDpi) {
            throw WrongValue("--image-dpi", raw.imageDpi, "10 to 10000 dpi");
        }
    }
    if (!raw.language.empty()) {
        const auto known = [&](const char* code) { return raw.language == code; };
        if (std::none_of(std::begin(kLanguages), std::end(kLanguages), known)) {
            throw WrongValue("--language", raw.language, kLanguageRange);
        }
        options.language = raw.language;
    }
    if (!raw.log.empty()) {
        if (raw.log != "error" && raw.log != "trace") throw WrongValue("--log", raw.log, "error or trace");
        options.logMask = raw.log == "error" ? 1 : 3;
    }
}

void CheckSettings(const RawOptions& raw, JobOptions& options) {
    if (!raw.size.empty() && !raw.label.empty()) throw OptionError("--size and --label: give one of them");
    if (!raw.size.empty()) options.size = ParsePaperSize(raw.size);
    if (!raw.label.empty()) options.label = raw.label;
    if (!raw.profile.empty()) options.profile = raw.profile;
    for (const auto& [setting, text] : raw.settings) {
        if (text.empty()) continue;
        const bool bare = setting->IsSwitch() && text == "true";
        options.settings.emplace_back(setting, bare ? 1 : ParseSetting(*setting, text));
    }
    if (raw.landscape && raw.portrait) throw OptionError("--landscape and --portrait: give one of them");
    const Setting& orientation = FindSetting("--orientation");
    if (raw.landscape) options.settings.emplace_back(&orientation, DMORIENT_LANDSCAPE);
    if (raw.portrait) options.settings.emplace_back(&orientation, DMORIENT_PORTRAIT);
}

// What is asked for must have something to work on.
void CheckTask(const JobOptions& options) {
    if (options.testPage && !options.pages.empty()) {
        throw OptionError("--test-page prints no other pages; leave the files out");
    }
    const bool onlyLooks =
        options.dryRun || options.list || (!options.saveMode.empty() && !options.HasPages());
    if (onlyLooks) return;
    if (!options.HasPages()) throw OptionError("no pages: name PNG files, or ask for the --test-page");
    if (options.output.empty()) throw OptionError("no output: name a file with -o FILE");
}

}  // namespace

std::optional<JobOptions> ParseJobOptions(const std::vector<std::string>& arguments, std::ostream& help) {
    CLI::App app(kDescription, "orvexprint");
    app.formatter(std::make_shared<HelpFormat>());
    app.footer(kExamples);
    app.set_help_flag("-h,--help", "show this help")->group(kOutput);

    JobOptions options;
    RawOptions raw;
    AddPageOptions(app, raw, options);
    for (const Setting& setting : Settings()) AddSetting(app, raw, setting);
    Add(app, "--profile", raw.profile, "FILE", kColour, "an installed colour profile; see --list");
    AddOutputOptions(app, raw, options);
    AddPrinterOptions(app, raw);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        help << app.help();
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw OptionError(std::string(error.what()) + "; --help shows what there is");
    }
    for (const std::string& page : raw.pages) options.pages.push_back(PathFromUtf8(page));
    options.title = raw.title;
    options.output = PathFromUtf8(raw.output);
    options.installation = PathFromUtf8(raw.installation);
    options.engine = PathFromUtf8(raw.engine);
    options.printerData = PathFromUtf8(raw.printerData);
    options.loadMode = PathFromUtf8(raw.loadMode);
    options.saveMode = PathFromUtf8(raw.saveMode);
    CheckWords(raw, options);
    CheckSettings(raw, options);
    CheckTask(options);
    return options;
}
