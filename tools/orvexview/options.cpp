#include "tools/orvexview/options.h"

#include <algorithm>

#include "tools/common/number_text.h"
#include "tools/common/picture.h"

namespace orvex::tools::view {

namespace {

constexpr const char* kDescription =
    "Shows a print file made with the stand-in print engine: the job header as a table, the geometry of "
    "every page,\n"
    "and each page as PREFIX-pageN.png, as typical inks look on white paper.\n"
    "\n"
    "A raster row lies along the paper feed, one row for each place across the print head; so a portrait "
    "label is sent\n"
    "turned by a quarter. Pictures are turned back as the label reads.";

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexview job.prn                          tables, and job-page1.png, job-page2.png, ...\n"
    "  orvexview job.prn -o look/job --inks       also look/job-page1-K.png, -C, -M and -Y: one ink each in "
    "grey\n"
    "  orvexview job.prn --layout --page 1        also job-page1-layout.png: the page in its place under the "
    "head\n"
    "  orvexview job.prn --no-pictures            the tables alone\n"
    "  orvexview job.prn --verify label.png       how far page 1 is from the picture that was printed\n"
    "  orvexview job.prn --verify label.png --profile neutral.zvp   whether its inks are right, to the "
    "pixel\n"
    "  orvexview job.prn --html proof.html        a page for a browser; --html --help tells more\n"
    "  orvexview job.prn --compare other.prn      what differs; --compare --help tells more\n"
    "  orvexview job.prn --ink                    milliliters and cost; --ink --help tells more\n"
    "  orvexview --log orvexgdi.txt               the driver's log as a tree; --log --help tells more\n"
    "\n"
    "A file is replaced only when the new one is complete: an earlier picture of orvexview, any other file "
    "with --force,\n"
    "but never the print file or the picture to verify.\n"
    "\n"
    "Exit status: 0 when all went well; 1 when the file is not sound (what can be read of it is shown), a "
    "picture can't be\n"
    "written, or sizes or inks differ from the picture to verify; 2 for a wrong command line.";

constexpr const char* kPageRange = "the number of a page, from 1";
constexpr const char* kOrientationWords = "portrait or landscape";

void AddOutputOptions(CommandLine& line) {
    line.Files("FILE", "", "The print file");
    line.Require("FILE");
    line.Text("-o,--output", "PREFIX",
              "Beginning of the pictures' names; default: FILE without its extension");
    line.Flag("--inks", "One grey picture per ink as well: PREFIX-pageN-K.png, -C, -M, -Y");
    line.Flag(
        "--layout",
        "PREFIX-pageN-layout.png as well: the whole print head as a grey band with a tick every 10 mm, the "
        "page in its place on it, with left, right, paper feed and a legend in mm and pixels; fill rows are "
        "bluish, the purge bar is yellowish. The head's first row, its left end, is at the right of a "
        "portrait page, at the top of a landscape one");
    line.Flag("--no-pictures", "Writes no pictures of pages");
    line.Exclude("--no-pictures", "--inks");
    line.Exclude("--no-pictures", "--layout");
    line.Flag("--force", "Replaces files that have a picture's name but are no pictures of orvexview");
    line.Text("--thumbnail", "FILE", "Writes the job's thumbnail, a PNG, to this file");
    line.Text("--verify", "PAGE.png",
              "Compares the first page shown, at every pixel, with a PNG of the label's size in pixels");
    line.Text(
        "--profile", "FILE.zvp",
        "With --verify, compares inks: the PNG goes through this profile as the driver prints it, and every "
        "ink must be equal. Not for art with a color profile of its own, nor for jobs with adjusted colors, "
        "turned by 180 degrees or mirrored");
    line.Need("--profile", "--verify");
}

void AddViewOptions(CommandLine& line) {
    line.Texts("-p,--page", "N",
               "Only this page, its table and its pictures, from 1; may be given several times");
    line.Text(
        "--scale", "K",
        "K x K pixels become one, 1 to 1000; default: the longer side gets at most 1600 pixels. A label "
        "longer than the print head is wide gets the scale at which the head's width has 1600, so that its "
        "text can be read, up to 8 million pixels. The layout never gets larger than that");
    line.Flag("--full", "Every pixel, the same as --scale 1");
    line.Exclude("--full", "--scale");
    line.Flag("--raw", "Pictures as sent: not turned, with fill rows and purge bar");
    line.Text("--orientation", "HOW", "portrait or landscape, if the job header does not tell it");
}

uint32_t NumberOf(const char* option, const std::string& text, int most, const std::string& allowed) {
    const std::optional<int> number = ParseWhole(text);
    if (!number || *number < 1 || *number > most) throw WrongValue(option, text, allowed);
    return static_cast<uint32_t>(*number);
}

void ReadOutputOptions(const CommandLine& line, Options& options) {
    options.file = line.Value("FILE").value_or("");
    options.prefix = line.Value("--output").value_or("");
    options.inks = line.Has("--inks");
    options.layout = line.Has("--layout");
    options.pictures = !line.Has("--no-pictures");
    options.force = line.Has("--force");
    options.thumbnail = line.Value("--thumbnail").value_or("");
    options.verify = line.Value("--verify").value_or("");
    options.profile = line.Value("--profile").value_or("");
}

void ReadViewOptions(const CommandLine& line, Options& options) {
    for (const std::string& text : line.Values("--page")) {
        options.pages.push_back(NumberOf("--page", text, INT32_MAX, kPageRange));
    }
    if (const auto text = line.Value("--scale")) {
        options.scale = NumberOf("--scale", *text, kMaxScale, "1 to " + std::to_string(kMaxScale));
    }
    if (line.Has("--full")) options.scale = 1;
    options.raw = line.Has("--raw");
    if (const auto text = line.Value("--orientation")) {
        if (*text != "portrait" && *text != "landscape") {
            throw WrongValue("--orientation", *text, kOrientationWords);
        }
        options.orientation = *text == "portrait" ? Orientation::kPortrait : Orientation::kLandscape;
    }
}

}  // namespace

uint32_t PreviewScale(uint32_t width, uint32_t height, uint32_t headRows) {
    uint32_t scale = ScaleToFit(std::min(std::max(width, height), headRows), kPreviewSize);
    const auto pixels = [&] {
        return uint64_t{(width + scale - 1) / scale} * ((height + scale - 1) / scale);
    };
    while (pixels() > kMaxPreviewPixels) ++scale;
    return scale;
}

std::optional<Options> ReadOptions(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexview", kDescription, "[options] FILE", kExamples);
    AddOutputOptions(line);
    AddViewOptions(line);
    line.Version("Show the version", "Show this help");
    if (!line.Read(arguments, out)) return std::nullopt;
    Options options;
    ReadOutputOptions(line, options);
    ReadViewOptions(line, options);
    return options;
}

}  // namespace orvex::tools::view
