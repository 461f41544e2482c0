#include "tools/orvexprint/job_options.h"

#include <algorithm>

#include "tools/common/command_line.h"
#include "tools/common/number_text.h"
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

constexpr int kAnyNumber = -1;
constexpr int kLogErrors = 1;  // masks of the driver's log
constexpr int kLogEverything = 3;
constexpr int kLeastImageDpi = 10;
constexpr int kMostImageDpi = 10000;
constexpr char kRotateRange[] = "off or auto";
constexpr const char* kLanguages[] = {"ENG", "FRA", "DEU", "CH", "ES", "JPN", "ENU"};
constexpr char kLanguageRange[] = "ENG, FRA, DEU, CH, ES, JPN or ENU";

void AddSetting(CommandLine& line, const Setting& setting) {
    line.Group(setting.group);
    if (setting.IsSwitch()) {
        line.Flag(setting.option, setting.help, "[=off]");
    } else {
        line.Text(setting.option, setting.words.empty() ? "N" : "WORD",
                  std::string(setting.help) + " (" + RangeText(setting) + ")");
    }
}

void AddPageOptions(CommandLine& line) {
    line.Group(kPages);
    line.Files(
        "PAGE", "FILE",
        "PNG, JPEG, BMP and GIF files and enhanced metafiles (EMF, drawn by GDI, in the Windows build "
        "alone), a page each, printed in that order at their real size; - is standard input. JPEGs are "
        "turned as their EXIF data say. Pages of the job's resolution are never resampled, and the "
        "command says which others are. Or a spool file of Windows with metafiles (data type NT EMF), "
        "which is a whole job with its own settings. " +
            std::string(kColorsHelp),
        kAnyNumber);
    line.Flag("--test-page", "print the built-in self-test page instead of files");
    line.Text("--size", "WxH",
              "width and length of the label, in mm, cm or in (" + PaperText(kLeastPaper) + " to " +
                  PaperText(kMostPaper) + "); " + kNamedPapers +
                  ", which is what pages get if nothing else says how large the label is");
    line.Text("--label", "NAME", "a label of the printer's list instead, by its name or number; see --list");
    line.Flag("--landscape", "turn the page: the label's length runs across it");
    line.Flag("--portrait", "turn the page back if a loaded device mode is landscape");
    line.Flag("--fit", "scale each page to the largest size that the label holds");
    line.Text(
        "--rotate", "WORD",
        std::string("turn a page by a quarter if it fits, or fits larger, only then (") + kRotateRange + ")");
    line.Flag("--smooth",
              "blend the pixels of enlarged pages, for photographs; bars and text are sharper without it");
    line.Text("--shd", "FILE",
              "the shadow file beside a spool file, for the job's name and its first settings");
    line.Text("--image-dpi", "N",
              "resolution of pages that state none (10 to 10000 dpi; default: the job's)");
}

void AddOutputOptions(CommandLine& line) {
    line.Group(kOutput);
    line.Text(
        "-o,--output", "FILE",
        "the print file; it appears when it is complete. What is no regular file is written to as it is; - "
        "is "
        "standard output, and messages go to standard error then");
    line.Flag("--force", "replace an existing file even if it is no print file or no device mode");
    line.Flag(
        "--strict",
        "fail where the driver would only fall back: a profile that it can't read, no profiles at all, no "
        "settings.inf");
    line.Text("--title", "NAME", "name of the job (default: the name of the first page)");
    line.Flag("--dry-run", "show the settings and the page's place, and print nothing");
    line.Flag("--list", "list the printer's labels and colour profiles");
    line.Text(
        "--load-devmode", "FILE",
        "start from the settings of a device mode: a file of its 916 bytes, a spool file, a shadow file or a "
        "registry export; FILE#2 is the second one of such a file");
    line.Flag(
        "--as-is",
        "hand that device mode to the driver as it is stored: any bytes, in memory that ends with them");
    line.Text("--save-devmode", "FILE", "write the job's settings to such a file");
    line.Text(
        "--save-spl", "FILE",
        "write the job to a spool file as well, with its pages as they were drawn; it prints the same again");
}

void AddPrinterOptions(CommandLine& line) {
    line.Group(kPrinter);
    line.Text("--install", "DIR",
              "installation folder of the driver (default: the folder \"install\" beside this program)");
    line.Text(
        "--engine", "FILE",
        "raster library to print with (default: the hpcrlib.dll of the installation folder or, failing that, "
        "beside this program)");
    line.Text("--printer-data", "FILE", "keep the printer's label list in this file between runs");
    line.Text("--language", "CODE",
              std::string("language of profile names (") + kLanguageRange + "), if settings.inf names none");
    line.Text(
        "--log", "LEVEL",
        "turn the driver's log on for this run, and for no other program: error, trace, or tree, which is "
        "the trace and shows it as a tree at the end");
}

fs::path GivenPath(const CommandLine& line, const char* option) {
    const auto text = line.Value(option);
    if (text && text->empty()) throw OptionError(std::string(option) + " needs a name");
    return PathFromUtf8(text.value_or(""));
}

void ReadWords(const CommandLine& line, JobOptions& options) {
    if (const auto text = line.Value("--image-dpi")) {
        options.imageDpi = ParseWhole(*text);
        if (!options.imageDpi || *options.imageDpi < kLeastImageDpi || *options.imageDpi > kMostImageDpi) {
            throw WrongValue("--image-dpi", *text, "10 to 10000 dpi");
        }
    }
    if (const auto text = line.Value("--rotate")) {
        if (*text != "off" && *text != "auto") throw WrongValue("--rotate", *text, kRotateRange);
        options.turnToFit = *text == "auto";
    }
    if (const auto text = line.Value("--language")) {
        const auto known = [&](const char* code) { return *text == code; };
        if (std::none_of(std::begin(kLanguages), std::end(kLanguages), known)) {
            throw WrongValue("--language", *text, kLanguageRange);
        }
        options.language = text;
    }
    if (const auto text = line.Value("--log")) {
        if (*text != "error" && *text != "trace" && *text != "tree") {
            throw WrongValue("--log", *text, "error, trace or tree");
        }
        options.logMask = *text == "error" ? kLogErrors : kLogEverything;
        options.logTree = *text == "tree";
    }
    options.title = line.Value("--title").value_or("");
}

void ReadPaths(const CommandLine& line, JobOptions& options) {
    for (const std::string& page : line.Values("PAGE")) options.pages.push_back(PathFromUtf8(page));
    options.output = GivenPath(line, "--output");
    options.installation = GivenPath(line, "--install");
    options.engine = GivenPath(line, "--engine");
    options.printerData = GivenPath(line, "--printer-data");
    options.loadMode = GivenPath(line, "--load-devmode");
    options.saveMode = GivenPath(line, "--save-devmode");
    options.shadow = GivenPath(line, "--shd");
    options.saveSpool = GivenPath(line, "--save-spl");
}

void ReadSettings(const CommandLine& line, JobOptions& options) {
    const auto size = line.Value("--size");
    options.label = line.Value("--label");
    options.profile = line.Value("--profile");
    options.sizeOfPage =
        size ? *size == "page" : !options.label && options.loadMode.empty() && !options.pages.empty();
    if (size && !options.sizeOfPage) options.size = ParsePaperSize(*size);
    if (size && options.label) throw OptionError("--size and --label: give one of them");
    for (const Setting& setting : Settings()) {
        const auto text = line.Value(setting.option);
        if (!text) continue;
        const bool bare = setting.IsSwitch() && *text == "true";
        options.settings.emplace_back(&setting, bare ? 1 : ParseSetting(setting, *text));
    }
    const bool landscape = line.Has("--landscape"), portrait = line.Has("--portrait");
    if (landscape + portrait + line.Value("--orientation").has_value() > 1) {
        throw OptionError("--landscape, --portrait and --orientation: give one of them");
    }
    const Setting& orientation = FindSetting("--orientation");
    if (landscape) options.settings.emplace_back(&orientation, DMORIENT_LANDSCAPE);
    if (portrait) options.settings.emplace_back(&orientation, DMORIENT_PORTRAIT);
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
    CommandLine line("orvexprint", kDescription, "[options] -o FILE PAGE.png...", kExamples);
    AddPageOptions(line);
    for (const Setting& setting : Settings()) AddSetting(line, setting);
    line.Group(kColor);
    line.Text(
        "--profile", "NAME",
        "an installed colour profile, by the name of its file or the one beside it in --list, in any case; "
        "or the path of a profile, which is then installed for this run");
    AddOutputOptions(line);
    AddPrinterOptions(line);
    line.Version("show the version", "show this help");
    if (!line.Read(arguments, help)) return std::nullopt;
    JobOptions options;
    options.testPage = line.Has("--test-page");
    options.fit = line.Has("--fit");
    options.smooth = line.Has("--smooth");
    options.force = line.Has("--force");
    options.strict = line.Has("--strict");
    options.dryRun = line.Has("--dry-run");
    options.asIs = line.Has("--as-is");
    options.list = line.Has("--list");
    ReadPaths(line, options);
    ReadWords(line, options);
    ReadSettings(line, options);
    CheckTask(options);
    return options;
}

}  // namespace orvex::tools::print
