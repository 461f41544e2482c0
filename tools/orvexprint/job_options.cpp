#include "tools/orvexprint/job_options.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "tools/common/help_format.h"
#include "tools/common/number_text.h"
#include "tools/common/product_version.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/art_colors.h"

namespace orvex::tools::print {

namespace fs = std::filesystem;

namespace {

constexpr char kDescription[] =
    "Prints pages through the Orvex Series driver and writes what the printer would get into a file.\n";
constexpr char kExamples[] = R"(Examples:
  orvexprint -o label.prn label.png
      prints a page at its real size, on a label as large as the page
  orvexprint --size 100x150mm --dpi 600 -o label.prn front.png back.png
      prints two pages on a label of 100 mm by 150 mm at 600 dpi
  orvexprint --label "Label 100 x 150 mm" --align centre --fit -o label.prn photo.png
      prints on a label of the printer's list (see --list), with the picture scaled to it
  orvexprint --size 60x40mm --purge-bar leading --dry-run
      shows the page's place under the print head, and prints nothing
  orvexprint -o job.prn job.spl --shd job.shd
      replays a job that the spooler of Windows kept, with its own settings
  orvexprint --test-page --log trace -o test.prn
      prints the self-test page, and writes a trace of the job to the driver's log
  orvexprint --show-devmode printer.reg
      shows a device mode field by field, and what the driver makes of it and why
  orvexprint --compare-devmode before.bin job.shd
      shows the fields in which two device modes differ
  orvexprint --check
      checks whether the installation is sound; --check --help tells more
)";

constexpr char kPages[] = "Page";
constexpr char kColor[] = "Colour";
constexpr char kOutput[] = "Output";
constexpr char kPrinter[] = "Printer and program";

constexpr int kLogErrors = 1;  // masks of the driver's log
constexpr int kLogEverything = 3;
constexpr int kLeastImageDpi = 10;
constexpr int kMostImageDpi = 10000;
constexpr char kRotateRange[] = "off or auto";
constexpr const char* kLanguages[] = {"ENG", "FRA", "DEU", "CH", "ES", "JPN", "ENU"};
constexpr char kLanguageRange[] = "ENG, FRA, DEU, CH, ES, JPN or ENU";

// Adds an option that takes a text; if it is given several times, the last one counts.
CLI::Option* Add(CLI::App& app, const char* name, const char* type, const char* group,
                 const std::string& help) {
    return app.add_option(name)->description(help)->type_name(type)->group(group)->take_last();
}

void AddFlag(CLI::App& app, const char* name, const char* group, const char* help) {
    app.add_flag(name)->description(help)->group(group);
}

void AddSetting(CLI::App& app, const Setting& setting) {
    const std::string help = std::string(setting.help) + " (" + RangeText(setting) + ")";
    if (setting.IsSwitch()) {
        app.add_flag(setting.option)->description(setting.help)->type_name("[=off]")->group(setting.group);
    } else {
        Add(app, setting.option, setting.words.empty() ? "N" : "WORD", setting.group, help);
    }
}

void AddPageOptions(CLI::App& app) {
    app.add_option("PAGE")
        ->description(
            "PNG, JPEG, BMP and GIF files and enhanced metafiles (EMF, drawn by GDI, in the Windows build "
            "alone), a page each, printed in that order at their real size; - is standard input. JPEGs are "
            "turned as their EXIF data say. Pages of the job's resolution are never resampled, and the "
            "command says which others are. Or a spool file of Windows with metafiles (data type NT EMF), "
            "which is a whole job with its own settings. " +
            std::string(kColorsHelp))
        ->type_name("FILE")
        ->expected(1, -1)
        ->allow_extra_args()
        ->group(kPages);
    AddFlag(app, "--test-page", kPages, "print the built-in self-test page instead of files");
    Add(app, "--size", "WxH", kPages,
        "width and length of the label, in mm, cm or in (" + PaperText(kLeastPaper) + " to " +
            PaperText(kMostPaper) + "); " + kNamedPapers +
            ", which is what pages get if nothing else says how large the label is");
    Add(app, "--label", "NAME", kPages,
        "a label of the printer's list instead, by its name or number; see --list");
    AddFlag(app, "--landscape", kPages, "turn the page: the label's length runs across it");
    AddFlag(app, "--portrait", kPages, "turn the page back if a loaded device mode is landscape");
    AddFlag(app, "--fit", kPages, "scale each page to the largest size that the label holds");
    Add(app, "--rotate", "WORD", kPages,
        std::string("turn a page by a quarter if it fits, or fits larger, only then (") + kRotateRange + ")");
    AddFlag(app, "--smooth", kPages,
            "blend the pixels of enlarged pages, for photographs; bars and text are sharper without it");
    Add(app, "--shd", "FILE", kPages,
        "the shadow file beside a spool file, for the job's name and its first settings");
    Add(app, "--image-dpi", "N", kPages,
        "resolution of pages that state none (10 to 10000 dpi; default: the job's)");
}

void AddOutputOptions(CLI::App& app) {
    Add(app, "-o,--output", "FILE", kOutput,
        "the print file; it appears when it is complete. What is no regular file is written to as it is; - "
        "is "
        "standard output, and messages go to standard error then");
    AddFlag(app, "--force", kOutput,
            "replace an existing file even if it is no print file or no device mode");
    AddFlag(
        app, "--strict", kOutput,
        "fail where the driver would only fall back: a profile that it can't read, no profiles at all, no "
        "settings.inf");
    Add(app, "--title", "NAME", kOutput, "name of the job (default: the name of the first page)");
    AddFlag(app, "--dry-run", kOutput, "show the settings and the page's place, and print nothing");
    AddFlag(app, "--list", kOutput, "list the printer's labels and colour profiles");
    Add(app, "--load-devmode", "FILE", kOutput,
        "start from the settings of a device mode: a file of its 916 bytes, a spool file, a shadow file or a "
        "registry export; FILE#2 is the second one of such a file");
    AddFlag(app, "--as-is", kOutput,
            "hand that device mode to the driver as it is stored: any bytes, in memory that ends with them");
    Add(app, "--save-devmode", "FILE", kOutput, "write the job's settings to such a file");
    Add(app, "--save-spl", "FILE", kOutput,
        "write the job to a spool file as well, with its pages as they were drawn; it prints the same again");
}

void AddPrinterOptions(CLI::App& app) {
    Add(app, "--install", "DIR", kPrinter,
        "installation folder of the driver (default: the folder \"install\" beside this program)");
    Add(app, "--engine", "FILE", kPrinter,
        "raster library to print with (default: the hpcrlib.dll of the installation folder or, failing that, "
        "beside this program)");
    Add(app, "--printer-data", "FILE", kPrinter, "keep the printer's label list in this file between runs");
    Add(app, "--language", "CODE", kPrinter,
        std::string("language of profile names (") + kLanguageRange + "), if settings.inf names none");
    Add(app, "--log", "LEVEL", kPrinter,
        "turn the driver's log on for this run, and for no other program: error, trace, or tree, which is "
        "the trace and shows it as a tree at the end");
}

// Returns the value given for an option, or nothing if the option was not given.
std::optional<std::string> Given(const CLI::App& app, const char* option) {
    const CLI::Option* const found = app.get_option(option);
    if (found->count() == 0) return std::nullopt;
    return found->results().back();
}

fs::path GivenPath(const CLI::App& app, const char* option) {
    const auto text = Given(app, option);
    if (text && text->empty()) throw OptionError(std::string(option) + " needs a name");
    return PathFromUtf8(text.value_or(""));
}

void ReadWords(const CLI::App& app, JobOptions& options) {
    if (const auto text = Given(app, "--image-dpi")) {
        options.imageDpi = ParseWhole(*text);
        if (!options.imageDpi || *options.imageDpi < kLeastImageDpi || *options.imageDpi > kMostImageDpi) {
            throw WrongValue("--image-dpi", *text, "10 to 10000 dpi");
        }
    }
    if (const auto text = Given(app, "--rotate")) {
        if (*text != "off" && *text != "auto") throw WrongValue("--rotate", *text, kRotateRange);
        options.turnToFit = *text == "auto";
    }
    if (const auto text = Given(app, "--language")) {
        const auto known = [&](const char* code) { return *text == code; };
        if (std::none_of(std::begin(kLanguages), std::end(kLanguages), known)) {
            throw WrongValue("--language", *text, kLanguageRange);
        }
        options.language = text;
    }
    if (const auto text = Given(app, "--log")) {
        if (*text != "error" && *text != "trace" && *text != "tree") {
            throw WrongValue("--log", *text, "error, trace or tree");
        }
        options.logMask = *text == "error" ? kLogErrors : kLogEverything;
        options.logTree = *text == "tree";
    }
    options.title = Given(app, "--title").value_or("");
}

void ReadPaths(const CLI::App& app, JobOptions& options) {
    for (const std::string& page : app.get_option("PAGE")->results())
        options.pages.push_back(PathFromUtf8(page));
    options.output = GivenPath(app, "--output");
    options.installation = GivenPath(app, "--install");
    options.engine = GivenPath(app, "--engine");
    options.printerData = GivenPath(app, "--printer-data");
    options.loadMode = GivenPath(app, "--load-devmode");
    options.saveMode = GivenPath(app, "--save-devmode");
    options.shadow = GivenPath(app, "--shd");
    options.saveSpool = GivenPath(app, "--save-spl");
}

void ReadSettings(const CLI::App& app, JobOptions& options) {
    const auto size = Given(app, "--size");
    options.label = Given(app, "--label");
    options.profile = Given(app, "--profile");
    options.sizeOfPage =
        size ? *size == "page" : !options.label && options.loadMode.empty() && !options.pages.empty();
    if (size && !options.sizeOfPage) options.size = ParsePaperSize(*size);
    if (size && options.label) throw OptionError("--size and --label: give one of them");
    for (const Setting& setting : Settings()) {
        const auto text = Given(app, setting.option);
        if (!text) continue;
        const bool bare = setting.IsSwitch() && *text == "true";
        options.settings.emplace_back(&setting, bare ? 1 : ParseSetting(setting, *text));
    }
    if (app.count("--landscape") + app.count("--portrait") + app.count("--orientation") > 1 &&
        (app.count("--landscape") > 0 || app.count("--portrait") > 0)) {
        throw OptionError("--landscape, --portrait and --orientation: give one of them");
    }
    const Setting& orientation = FindSetting("--orientation");
    if (app.count("--landscape") > 0) options.settings.emplace_back(&orientation, DMORIENT_LANDSCAPE);
    if (app.count("--portrait") > 0) options.settings.emplace_back(&orientation, DMORIENT_PORTRAIT);
}

// Checks that there are pages and an output if the command line asks to print.
void CheckTask(const JobOptions& options) {
    if (options.testPage && !options.pages.empty()) {
        throw OptionError("--test-page prints no other pages; leave the files out");
    }
    if (options.sizeOfPage && options.pages.empty()) {
        throw OptionError("--size page takes the size from the first page, and there is none");
    }
    const bool changed =
        options.size || options.sizeOfPage || options.label || options.profile || !options.settings.empty();
    if (options.asIs && (options.loadMode.empty() || changed)) {
        throw OptionError(
            "--as-is hands over the device mode of --load-devmode as it is stored; give that, and leave out "
            "--size, --label, --profile and all settings");
    }
    if (!options.shadow.empty() && options.pages.size() != 1) {
        throw OptionError("--shd belongs to a spool file; name that file, and no other");
    }
    const bool onlyLooks =
        options.dryRun || options.list || (!options.saveMode.empty() && !options.HasPages());
    if (onlyLooks) return;
    if (!options.HasPages())
        throw OptionError("no pages: name pictures, EMF or spool files, or ask for the --test-page");
    if (options.output.empty()) throw OptionError("no output: name a file with -o FILE");
}

}  // namespace

std::optional<JobOptions> ParseJobOptions(const std::vector<std::string>& arguments, std::ostream& help) {
    CLI::App app(kDescription, "orvexprint");
    app.allow_windows_style_options(false);  // a name may begin with a slash
    app.formatter(std::make_shared<HelpFormat>("[options] -o FILE PAGE.png..."));
    app.footer(kExamples);
    app.set_help_flag();

    AddPageOptions(app);
    for (const Setting& setting : Settings()) AddSetting(app, setting);
    Add(app, "--profile", "NAME", kColor,
        "an installed colour profile, by the name of its file or the one beside it in --list, in any case; "
        "or the "
        "path of a profile, which is then installed for this run");
    AddOutputOptions(app);
    AddPrinterOptions(app);
    app.set_version_flag("--version", std::string("orvexprint ") + kProductVersion, "show the version")
        ->group(kPrinter);
    app.set_help_flag("-h,--help", "show this help")->group(kPrinter);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        help << app.help();
        return std::nullopt;
    } catch (const CLI::CallForVersion& version) {
        help << version.what() << "\n";
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw OptionError(std::string(error.what()) + "; --help shows what there is");
    }
    JobOptions options;
    options.testPage = app.count("--test-page") > 0;
    options.fit = app.count("--fit") > 0;
    options.smooth = app.count("--smooth") > 0;
    options.force = app.count("--force") > 0;
    options.strict = app.count("--strict") > 0;
    options.dryRun = app.count("--dry-run") > 0;
    options.asIs = app.count("--as-is") > 0;
    options.list = app.count("--list") > 0;
    ReadPaths(app, options);
    ReadWords(app, options);
    ReadSettings(app, options);
    CheckTask(options);
    return options;
}

}  // namespace orvex::tools::print
