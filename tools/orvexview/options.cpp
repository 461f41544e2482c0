#include "tools/orvexview/options.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

#include "tools/common/help_format.h"

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
    "\n"
    "Exit status: 0 when all went well; 1 when the file is not sound, a picture can't be written or sizes "
    "differ from\n"
    "the picture to verify; other values for a wrong command line.";

void AddOutputOptions(CLI::App& app, Options& options) {
    app.add_option("FILE", options.file, "The print file")->required()->type_name("");
    app.add_option("-o,--output", options.prefix,
                   "Beginning of the pictures' names; default: FILE without its extension")
        ->type_name("PREFIX");
    app.add_flag("--inks", options.inks, "One grey picture per ink as well: PREFIX-pageN-K.png, -C, -M, -Y");
    app.add_flag("--layout", options.layout,
                 "PREFIX-pageN-layout.png as well: the whole print head as a grey band with a tick every 10 "
                 "mm, the page in its place on it; fill rows are bluish, the purge bar is yellowish. The "
                 "head's first row is at the right of a portrait page, at the top of a landscape one");
    app.add_flag_callback(
           "--no-pictures", [&options] { options.pictures = false; }, "Writes no pictures of pages")
        ->excludes("--inks")
        ->excludes("--layout");
    app.add_option("--thumbnail", options.thumbnail, "Writes the job's thumbnail, a PNG, to this file")
        ->type_name("FILE");
    app.add_option("--verify", options.verify,
                   "Compares the first page shown, at every pixel, with a PNG of the label's size in pixels")
        ->type_name("PAGE.png");
}

void AddViewOptions(CLI::App& app, Options& options) {
    static const std::map<std::string, Orientation> kOrientations = {{"portrait", Orientation::kPortrait},
                                                                     {"landscape", Orientation::kLandscape}};
    app.add_option("-p,--page", options.pages, "Only this page, from 1; may be given several times")
        ->type_name("N")
        ->allow_extra_args(false)
        ->check(Unnamed(CLI::PositiveNumber));
    CLI::Option* scale =
        app.add_option(
               "--scale", options.scale,
               "K x K pixels become one, 1 to 1000; default: the longer side gets at most 1600 pixels")
            ->type_name("K")
            ->check(Unnamed(CLI::Range(1u, kMaxScale)));
    app.add_flag_callback(
           "--full", [&options] { options.scale = 1; }, "Every pixel, the same as --scale 1")
        ->excludes(scale);
    app.add_flag("--raw", options.raw, "Pictures as sent: not turned, with fill rows and purge bar");
    app.add_option("--orientation", options.orientation,
                   "portrait or landscape, if the job header does not tell it")
        ->type_name("HOW")
        ->transform(Unnamed(CLI::CheckedTransformer(kOrientations)));
}

}  // namespace

std::optional<Options> ReadOptions(const std::vector<std::string>& arguments, int& status) {
    Options options;
    CLI::App app(kDescription, "orvexview");
    app.allow_windows_style_options(false);  // a file name may begin with a slash
    app.formatter(std::make_shared<HelpFormat>("[options] FILE"));
    app.footer(kExamples);
    AddOutputOptions(app, options);
    AddViewOptions(app, options);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        status = app.exit(error);
        return std::nullopt;
    }
    return options;
}

}  // namespace orvex::tools::view
