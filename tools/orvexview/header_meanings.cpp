#include "tools/orvexview/header_meanings.h"

#include <iterator>
#include <optional>

#include "tools/common/number_text.h"
#include "tools/orvexview/pjl_header.h"

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
    std::string_view text;     // the setting itself
    std::string_view choices;  // separated by '|'
};

constexpr Meaning kMeanings[] = {
    {"COPIES", Kind::kPlain, "copies of the job", ""},
    {"COLLATE", Kind::kYesNo, "copies in sets", ""},
    {"ORIGX", Kind::kPlain, "width of the label in pixels, as it reads", ""},
    {"ORIGY", Kind::kPlain, "height of the label in pixels, as it reads", ""},
    {"JOBCAPTURE", Kind::kYesNo, "the printer keeps the job", ""},
    {"NOPRINT", Kind::kYesNo, "the job is not printed", ""},
    {"ALIGN", Kind::kChoice, "place under the print head", "right|centre|left"},
    {"COLORMODE", Kind::kChoice, "colours", "all inks|grey of cyan, magenta and yellow|grey of black"},
    {"OVERSPRAY", Kind::kPlain, "overspray, 0 to 3", ""},
    {"FULLWIDTH", Kind::kYesNo, "nozzles are kept wet over the full width of the head", ""},
    {"PURGEBAR", Kind::kChoice, "purge bar", "none|in front of the image|behind the image"},
    {"PURGEDOTS", Kind::kPlain, "dots of the purge bar along the paper feed", ""},
    {"PURGEGAP", Kind::kPlain, "gap between purge bar and image in mm", ""},
    {"PURGEFREQ", Kind::kPlain, "pages from one purge bar to the next, 0 = on the first page only", ""},
    {"KWS", Kind::kYesNo, "nozzles are kept wet with a faint pattern where nothing is printed", ""},
    {"STITCHED", Kind::kYesNo, "pages follow each other without a gap", ""},
    {"PHOFFSET", Kind::kTenthsMm, "print-head offset across the paper", ""},
    {"TOFOFFSET", Kind::kTenthsMm, "offset along the paper feed", ""},
    {"CHUNKPAGES", Kind::kPlain, "pages printed in one go", ""},
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

}  // namespace

std::string MeaningOf(std::string_view name, std::string_view value) {
    for (const Meaning& meaning : kMeanings) {
        if (meaning.name != name) continue;
        const std::string text(meaning.text);
        if (meaning.kind == Kind::kPlain) return text;
        const std::optional<int32_t> number = ParsePjlNumber(value);
        return text + ": " + (number ? InWords(meaning, *number) : "not a number");
    }
    return {};
}

}  // namespace orvex::tools::view
