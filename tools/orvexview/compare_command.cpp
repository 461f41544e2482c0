#include "tools/orvexview/compare_command.h"
#include "tools/common/command_line.h"

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"
#include "tools/orvexview/job_difference.h"
#include "tools/orvexview/options.h"
#include "tools/orvexview/own_picture.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kDescription =
    "Compares two print files: settings, geometry, and the inks of every pixel. Where fill rows or the purge "
    "bar differ,\n"
    "the inks of the labels alone are compared.\n"
    "\n"
    "A difference picture shows the first file's page in pale gray, and red wherever an ink differs: the "
    "more, "
    "the darker.";

constexpr const char* kExamples =
    "Examples:\n"
    "  orvexview old.prn --compare new.prn               the tables\n"
    "  orvexview old.prn --compare new.prn -o look/new   also look/new-page1-difference.png of pages that "
    "differ\n"
    "  orvexview old.prn --compare new.prn --json        the same for programs\n"
    "\n"
    "Exit status: 0 when both print the same, 1 when they differ, 2 when that can't be told.";

struct CompareOptions {
    std::string first;
    std::string second;
    std::string prefix;
    bool json = false;
    bool force = false;  // replaces files that orvexview has not made
};

PrintFile Load(const std::string& name) {
    try {
        return ReadPrintFile(PathFromUtf8(name));
    } catch (const PrintFileError& error) {
        throw std::runtime_error(name + " is no sound print file: " + error.what());
    }
}

class JobComparison {
  public:
    explicit JobComparison(const CompareOptions& options)
        : options_(options), first_(Load(options.first)), second_(Load(options.second)) {
        CheckOutputs();
        header_ = CompareHeaders(first_, second_);
        for (uint32_t i = 0; i < SharedPages(); ++i) TakePage(i);
    }

    bool IsSame() const { return header_.empty() && pages_.empty(); }

    std::string Text() const {
        std::string text;
        if (!header_.empty()) text += ValueTable(header_) + "\n";
        for (const PageDifference& page : pages_) text += PageText(page);
        for (const std::string& picture : pictures_) text += picture + "\n";
        return text + (IsSame() ? "Both print the same.\n" : "They differ.\n");
    }

    std::string JsonText() const {
        Json json = {{"same", IsSame()}, {"settings", ValuesJson(header_)}, {"pages", Json::array()}};
        for (const PageDifference& page : pages_) json["pages"].push_back(PageJson(page));
        json["pictures"] = pictures_;
        return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    }

  private:
    uint32_t SharedPages() const {
        return static_cast<uint32_t>(std::min(first_.pages.size(), second_.pages.size()));
    }

    std::string PictureName(uint32_t number) const {
        return options_.prefix + "-page" + std::to_string(number) + "-difference.png";
    }

    void CheckOutputs() const {
        if (options_.prefix.empty()) return;
        const NamedFile inputs[] = {{"the print file", PathFromUtf8(options_.first)},
                                    {"--compare", PathFromUtf8(options_.second)}};
        for (uint32_t number = 1; number <= SharedPages(); ++number) {
            const NamedFile picture{"a difference picture", PathFromUtf8(PictureName(number))};
            RefuseSharedFiles({&picture, 1}, inputs);
            if (!options_.force) RefuseReplacing(PictureName(number));
        }
    }

    void TakePage(uint32_t index) {
        const PrintedPage& page = first_.pages[index];
        std::unique_ptr<DifferencePicture> picture;
        const uint32_t scale = PreviewScale(page.rowWidth, page.rows, page.rows);
        if (!options_.prefix.empty()) picture = std::make_unique<DifferencePicture>(page, scale);
        PageDifference difference = ComparePages(first_, page, second_, second_.pages[index], picture.get());
        if (difference.IsNone()) return;
        if (picture && difference.part != ComparedPart::kNothing)
            WritePicture(page, picture->Finish(), scale);
        pages_.push_back(std::move(difference));
    }

    void WritePicture(const PrintedPage& page, Picture picture, uint32_t scale) {
        const PagePlacement placement = PlacePage(first_, page);
        if (placement.orientation == Orientation::kPortrait) picture = TurnClockwise(picture);
        const std::string name = PictureName(page.number);
        PngWriter writer(PathFromUtf8(name),
                         OwnPicture(picture.width, picture.height, picture.channels, first_.dpi, scale));
        writer.WriteRows(picture);
        writer.Complete();
        pictures_.push_back(name);
    }

    std::string ValueTable(const std::vector<ValueDifference>& values) const {
        Table table({"Difference", options_.first, options_.second});
        for (const ValueDifference& value : values) {
            table.Add({PrintableText(value.name, 40), PrintableText(value.first, 80),
                       PrintableText(value.second, 80)});
        }
        return table.Text();
    }

    PagePlacement PlacementOf(const PageDifference& page) const {
        return PlacePage(first_, first_.pages[page.number - 1]);
    }

    std::string PageText(const PageDifference& page) const {
        std::string text = "Page " + std::to_string(page.number) + "\n";
        if (!page.geometry.empty()) text += ValueTable(page.geometry);
        const InkDifference& inks = page.inks;
        if (page.part == ComparedPart::kNothing) {
            text += "Inks can't be compared, since the labels have different sizes.\n";
        } else if (inks.different == 0) {
            text += "All inks of the label are the same.\n";
        } else {
            text += GroupedNumber(inks.different) + " of " + GroupedNumber(inks.pixels) +
                    " pixels differ, at most by " + LargestText(inks) + "\nthe first at " +
                    PlaceText(PlacementOf(page), inks.place) + ": " + InksText(inks.place.first) + " and " +
                    InksText(inks.place.second) + "\n";
        }
        return text + "\n";
    }

    static Json ValuesJson(const std::vector<ValueDifference>& values) {
        Json json = Json::array();
        for (const ValueDifference& value : values) {
            json.push_back({{"name", value.name}, {"first", value.first}, {"second", value.second}});
        }
        return json;
    }

    static Json InksJson(uint32_t inkValue) {
        Json json;
        for (int ink = 0; ink < kInks; ++ink) {
            json[std::string(1, kInkLetters[ink])] = InkAmount(inkValue, ink);
        }
        return json;
    }

    Json PageJson(const PageDifference& page) const {
        Json json = {{"page", page.number}, {"geometry", ValuesJson(page.geometry)}};
        if (page.part == ComparedPart::kNothing) return json;
        const InkDifference& inks = page.inks;
        json["compared"] = page.part == ComparedPart::kBlock ? "block" : "label";
        json["pixels"] = inks.pixels;
        json["different"] = inks.different;
        if (inks.different == 0) return json;
        for (int ink = 0; ink < kInks; ++ink) {
            json["largest"][std::string(1, kInkLetters[ink])] = inks.largest[ink];
        }
        json["at"] = {{"row", inks.place.row},
                      {"x", inks.place.x},
                      {"place", PlaceText(PlacementOf(page), inks.place)},
                      {"first", InksJson(inks.place.first)},
                      {"second", InksJson(inks.place.second)}};
        return json;
    }

    const CompareOptions& options_;
    PrintFile first_;
    PrintFile second_;
    std::vector<ValueDifference> header_;
    std::vector<PageDifference> pages_;  // those that differ
    std::vector<std::string> pictures_;
};

}  // namespace

bool IsCompareCommand(const std::vector<std::string>& arguments) {
    return HasOption(arguments, "--compare");
}

int RunCompareCommand(const std::vector<std::string>& arguments, std::ostream& out) {
    CommandLine line("orvexview", kDescription, "FILE --compare OTHER [options]", kExamples,
                     "--compare --help");
    line.Files("FILE", "", "The first print file");
    line.Require("FILE");
    line.Text("--compare", "OTHER", "The second print file");
    line.Require("--compare");
    line.Text("-o,--output", "PREFIX",
              "Writes a difference picture of each page that differs, PREFIX-pageN-difference.png");
    line.Flag("--json", "JSON instead of tables");
    line.Flag("--force", "Replaces files that have a picture's name but are no pictures of orvexview");
    if (!line.Read(arguments, out)) return 0;
    CompareOptions options;
    options.first = line.Value("FILE").value_or("");
    options.second = line.Value("--compare").value_or("");
    options.prefix = line.Value("--output").value_or("");
    options.json = line.Has("--json");
    options.force = line.Has("--force");
    const JobComparison comparison(options);
    out << (options.json ? comparison.JsonText() : comparison.Text());
    return comparison.IsSame() ? 0 : 1;
}

}  // namespace orvex::tools::view
