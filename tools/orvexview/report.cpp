#include "tools/orvexview/report.h"

#include <optional>

#include "engine/print_stream.h"
#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/orvexview/table.h"

namespace orvex::tools::view {

namespace {

enum class Kind {
    kPlain,     // any value
    kYesNo,     // 0 or 1
    kChoice,    // one of the choices, counted from 0
    kTenthsMm,  // a length in tenths of a millimeter
};

struct Meaning {
    std::string_view name;
    Kind kind;
    std::string_view text;        // the setting itself
    std::string_view choices;     // separated by '|'
    std::string_view usual = {};  // value in a job whose settings nobody has changed; empty: none
};

constexpr Meaning kMeanings[] = {
    {"COPIES", Kind::kPlain, "copies of the job", "", "1"},
    {"COLLATE", Kind::kYesNo, "copies in sets", "", "0"},
    {"ORIGX", Kind::kPlain, "width of the label in pixels, as it reads", ""},
    {"ORIGY", Kind::kPlain, "height of the label in pixels, as it reads", ""},
    {"JOBCAPTURE", Kind::kYesNo, "the printer keeps the job", "", "0"},
    {"NOPRINT", Kind::kYesNo, "the job is not printed", "", "0"},
    {"ALIGN", Kind::kChoice, "place under the print head", "right|centre|left", "0"},
    {"COLORMODE", Kind::kChoice, "colours", "all inks|grey of cyan, magenta and yellow|grey of black", "0"},
    {"OVERSPRAY", Kind::kPlain, "overspray, 0 to 3", "", "0"},
    {"FULLWIDTH", Kind::kYesNo, "nozzles are kept wet over the full width of the head", "", "0"},
    {"PURGEBAR", Kind::kChoice, "purge bar", "none|in front of the image|behind the image", "0"},
    {"PURGEDOTS", Kind::kPlain, "dots of the purge bar along the paper feed", "", "1"},
    {"PURGEGAP", Kind::kPlain, "gap between purge bar and image in mm", "", "5"},
    {"PURGEFREQ", Kind::kPlain, "pages from one purge bar to the next, 0 = on the first page only", "", "0"},
    {"KWS", Kind::kYesNo, "nozzles are kept wet with a faint pattern where nothing is printed", "", "0"},
    {"STITCHED", Kind::kYesNo, "pages follow each other without a gap", "", "0"},
    {"PHOFFSET", Kind::kTenthsMm, "print-head offset across the paper", "", "20"},
    {"TOFOFFSET", Kind::kTenthsMm, "offset along the paper feed", "", "0"},
    {"CHUNKPAGES", Kind::kPlain, "pages printed in one go", "", "10000"},
    {"HPRES", Kind::kPlain, "resolution code for the engine", ""},
    {"JOB NAME", Kind::kPlain, "name of the document", ""},
    {"PROFILE", Kind::kPlain, "name of the colour profile", ""},
};

// Returns a choice by its number; empty if there is none.
std::string_view Choice(std::string_view choices, int32_t number) {
    for (; number > 0; --number) {
        const size_t bar = choices.find('|');
        if (bar == std::string_view::npos) return {};
        choices.remove_prefix(bar + 1);
    }
    return number < 0 ? std::string_view() : choices.substr(0, choices.find('|'));
}

std::string InWords(const Meaning& meaning, int32_t number) {
    if (meaning.kind == Kind::kTenthsMm) return DecimalText(number / 10.0, 1) + " mm";
    const std::string_view choices = meaning.kind == Kind::kYesNo ? "no|yes" : meaning.choices;
    const std::string_view choice = Choice(choices, number);
    return choice.empty() ? "not a known value" : std::string(choice);
}

std::string PixelsAndMm(uint32_t pixels, uint32_t dpi) {
    return pixels == 0 ? "none" : std::to_string(pixels) + " (" + MmText(pixels, dpi) + " mm)";
}

std::string InkText(const std::array<double, kInks>& means) {
    std::string text;
    for (int ink = 0; ink < kInks; ++ink) {
        text += (ink == 0 ? "" : "  ") + std::string(1, kInkLetters[ink]) + " " +
                DecimalText(100 * means[ink], 1) + " %";
    }
    return text;
}

std::string LabelText(const PrintFile& file, const PagePlacement& placement) {
    const bool portrait = placement.orientation == Orientation::kPortrait;
    const uint32_t width = portrait ? placement.imageRows : placement.imageWidth;
    const uint32_t height = portrait ? placement.imageWidth : placement.imageRows;
    return SizeText(width, height) + " (" + MmText(width, file.dpi) + " x " + MmText(height, file.dpi) +
           " mm)";
}

std::string OrientationText(const PagePlacement& placement) {
    const std::string name = placement.orientation == Orientation::kPortrait ? "portrait" : "landscape";
    return placement.explained ? name : name + ", not told by the job header";
}

std::string RowsText(const PrintedPage& page) {
    std::string rows = std::to_string(page.rows);
    if (page.missingRows > 0) {
        return std::to_string(page.rows - page.missingRows) + " of " + rows + ", the file breaks off";
    }
    if (page.rows == page.announcedRows) return rows;
    return rows + ", announced " + std::to_string(page.announcedRows);
}

std::string PurgeText(const PrintFile& file, const PagePlacement& placement) {
    std::string width = PixelsAndMm(placement.purgeWidth, file.dpi);
    if (placement.purgeWidth == 0) return width;
    return width + (placement.PurgeLeads() ? " in front" : " behind");
}

std::string HeadText(const PrintedPage& page, const PagePlacement& placement) {
    return std::to_string(placement.headTop) + " to " + std::to_string(placement.headTop + page.rows - 1) +
           " of " + std::to_string(placement.headRows);
}

std::string EncodedText(const PrintedPage& page) {
    const double raw = 4.0 * page.rowWidth * page.rows;
    return std::to_string(page.encodedSize) + " bytes, " +
           DecimalText(100.0 * static_cast<double>(page.encodedSize) / raw, 2) + " %";
}

}  // namespace

std::string DescribePage(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                         const std::array<double, kInks>& meanInks) {
    Table table({"Page", "Geometry", "Value"});
    const auto add = [&](const char* what, const std::string& value) {
        table.Add({std::to_string(page.number), what, value});
    };
    add("label", LabelText(file, placement));
    add("orientation", OrientationText(placement));
    add("rows handed over", RowsText(page));
    add("pixels in a row", std::to_string(page.rowWidth));
    add("fill rows in front", PixelsAndMm(placement.imageTop, file.dpi));
    add("fill rows behind", PixelsAndMm(placement.fillBottom, file.dpi));
    add("purge bar", PurgeText(file, placement));
    add("top offset of the block", PixelsAndMm(page.top, file.dpi));
    add("rows of the head", HeadText(page, placement));
    constexpr uint32_t kUnits = print_stream::kUnitsPerInch;
    add("engine page", SizeText(page.width, page.length) + " units (" + MmText(page.width, kUnits) + " x " +
                           MmText(page.length, kUnits) + " mm)");
    add("resolution code", std::to_string(page.resolutionCode));
    add("mean ink", InkText(meanInks));
    add("compressed to", EncodedText(page));
    return table.Text();
}

std::string MeaningOf(std::string_view name, std::string_view value) {
    for (const Meaning& meaning : kMeanings) {
        if (meaning.name != name) continue;
        std::string text(meaning.text);
        if (meaning.kind == Kind::kPlain) return text;
        const std::optional<int32_t> number = ParseWhole(value);
        return text + ": " + (number ? InWords(meaning, *number) : "not a number");
    }
    return {};
}

bool IsUnusual(std::string_view name, std::string_view value) {
    for (const Meaning& meaning : kMeanings) {
        if (meaning.name == name) return !meaning.usual.empty() && value != meaning.usual;
    }
    return false;
}

std::string DescribeHeader(const PrintFile& file) {
    Table table({"Setting", "Value", "Meaning"});
    for (const HeaderVariable& variable : file.header.variables) {
        table.Add({PrintableText(variable.name, 40), PrintableText(variable.value),
                   MeaningOf(variable.name, variable.value)});
    }
    if (file.header.thumbnail) {
        table.Add({"QRV_THUMBNAIL", std::to_string(file.header.thumbnail->size) + " characters",
                   "picture of the first page, PNG in base64"});
    }
    if (!file.header.IsStandIn()) {
        return table.Text() + "\nEngine: " + PrintableText(file.header.comment) +
               "\nLanguage: " + PrintableText(file.header.language) + "\n";
    }
    const std::string resolution =
        file.resolutionMode == 2 ? "neither 300 nor 600 dpi" : std::to_string(file.dpi) + " dpi";
    return table.Text() + "\nEngine: " + PrintableText(file.header.comment) + "\nResolution: " + resolution +
           "\nPages: " + std::to_string(file.pages.size()) + "\n";
}

}  // namespace orvex::tools::view
