#include "tools/orvexprint/setting_table.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "driver/config/device_mode.h"
#include "tools/common/number_text.h"

namespace orvex::tools::print {

namespace {

constexpr SettingWord kSwitchWords[] = {{"on", 1}, {"off", 0}};
constexpr SettingWord kOrientationWords[] = {{"portrait", DMORIENT_PORTRAIT},
                                             {"landscape", DMORIENT_LANDSCAPE}};
constexpr SettingWord kAlignmentWords[] = {
    {"left", kAlignLeft}, {"centre", kAlignCenter}, {"right", kAlignRight}, {"center", kAlignCenter}};
constexpr SettingWord kPurgeBarWords[] = {{"off", 0}, {"leading", 1}, {"trailing", 2}};
constexpr SettingWord kGrayWords[] = {
    {"off", kColorModeColor}, {"composite", kColorModeCompositeGray}, {"black", kColorModeBlackGray}};
constexpr char kPaper[] = "Page";
constexpr char kHead[] = "Print head";
constexpr char kColor[] = "Colour";
constexpr char kJob[] = "Job";

#define PUBLIC(name) \
    { offsetof(DeviceMode, pub) + offsetof(DEVMODEW, name), sizeof(DEVMODEW::name) }
#define PRIVATE(name) \
    { offsetof(DeviceMode, priv) + offsetof(PrivateDevMode, name), sizeof(PrivateDevMode::name) }

// Returns the values that a field of the device mode may have. A name without a row does not compile.
template <size_t N>
consteval ValidValues ValuesOf(const DeviceModeField (&rows)[N], std::string_view name) {
    size_t row = 0;
    while (name != rows[row].name) ++row;
    return rows[row].values;
}

constexpr std::span<const int16_t> ListOf(const ValidValues& values) {
    return {values.list, values.listed};
}

#define SWITCH kSwitchWords, {}, 0, 0, 1, ""
#define WORDS(words) words, {}, 0, 0, 1, ""
#define VALUES(values, perUnit, unit) {}, ListOf(values), (values).least, (values).most, perUnit, unit
#define PUBLIC_NUMBER(name, unit) PUBLIC(name), VALUES(ValuesOf(kPublicFields, #name), 1, unit)
#define NUMBER(name, unit) PRIVATE(name), VALUES(ValuesOf(kPrivateFields, #name), 1, unit)
#define TENTHS_OF_MM(name) PRIVATE(name), VALUES(ValuesOf(kPrivateFields, #name), 10, "mm")

// clang-format off
constexpr Setting kSettings[] = {
    {"--dpi", kPaper, PUBLIC_NUMBER(dmPrintQuality, "dpi"), "resolution", DM_PRINTQUALITY},
    {"--orientation", kPaper, PUBLIC(dmOrientation), WORDS(kOrientationWords), "orientation of the page; --landscape and --portrait are short forms", DM_ORIENTATION},
    {"--rotate180", kPaper, PRIVATE(rotate180), SWITCH, "turn every page by half a turn"},
    {"--mirror", kPaper, PRIVATE(mirrorImage), SWITCH, "mirror every page, for labels read through glass"},
    {"--feed-side", kPaper, PRIVATE(feedSide), SWITCH, "feed side of the page, for the printer's own programs"},

    {"--align", kHead, PRIVATE(alignment), WORDS(kAlignmentWords), "place of the label under the print head"},
    {"--print-head-offset", kHead, TENTHS_OF_MM(phHOffset), "shift of the print across the label"},
    {"--tof-offset", kHead, TENTHS_OF_MM(phVOffset), "shift of the print along the label, from its top of form"},
    {"--kws", kHead, PRIVATE(kws), SWITCH, "a faint pattern on blank pixels"},
    {"--full-width", kHead, PRIVATE(kws_fullwidth), SWITCH, "fill the whole width of the print head; acts with --kws or a purge bar"},
    {"--purge-bar", kHead, PRIVATE(purgeBar), WORDS(kPurgeBarWords), "a bar before or after the page"},
    {"--purge-dots", kHead, NUMBER(purgeDots, "pixels"), "width of the purge bar"},
    {"--purge-gap", kHead, NUMBER(purgeGap, "mm"), "gap between purge bar and page"},
    {"--purge-freq", kHead, NUMBER(purgeFreq, "pages"), "a purge bar every so many pages; 0: only on the first page"},

    {"--grey", kColor, PRIVATE(colorMode), WORDS(kGrayWords), "print in grey, with all inks or with black alone"},
    {"--overspray", kColor, NUMBER(overspray, ""), "level of overspray"},
    {"--colour-adjust", kColor, PRIVATE(colorAdjust), SWITCH, "mark the job as adjusted; the values below act without the mark"},
    {"--brightness", kColor, NUMBER(adj_brightness, ""), "darker or brighter"},
    {"--tone", kColor, NUMBER(adj_colortone, ""), "shift of the colour tone"},
    {"--saturation", kColor, NUMBER(adj_saturation, ""), "greyer or more colourful"},
    {"--cyan", kColor, NUMBER(adj_cyan, ""), "less or more cyan ink"},
    {"--magenta", kColor, NUMBER(adj_magenta, ""), "less or more magenta ink"},
    {"--yellow", kColor, NUMBER(adj_yellow, ""), "less or more yellow ink"},
    {"--black", kColor, NUMBER(adj_black, ""), "less or more black ink"},

    {"--copies", kJob, PUBLIC_NUMBER(dmCopies, ""), "number of copies", DM_COPIES},
    {"--collate", kJob, PUBLIC(dmCollate), SWITCH, "whole copies of the job, one after the other", DM_COLLATE},
    {"--private-copies", kJob, NUMBER(copies, ""), "a copy count of the printer's own programs", 0, PRIVATE(usePrivateCopies)},
    {"--use-private-copies", kJob, PRIVATE(usePrivateCopies), SWITCH, "use that count"},
    {"--chunk", kJob, NUMBER(chunksize, "pages"), "print the job in pieces of this many pages", 0, PRIVATE(chunkActive)},
    {"--chunked", kJob, PRIVATE(chunkActive), SWITCH, "print the job in pieces"},
    {"--job-capture", kJob, PRIVATE(jobCapture), SWITCH, "let the printer capture the job"},
    {"--no-print", kJob, PRIVATE(noPrint), SWITCH, "let the printer take the job without printing it"},
    {"--stitched", kJob, PRIVATE(stitched), SWITCH, "mark the job as stitched"},
    {"--print-setting", kJob, NUMBER(printSetting, ""), "a number for the printer's own programs"},
};
// clang-format on

std::string NumberText(const Setting& setting, int value) {
    return DecimalText(static_cast<double>(value) / setting.perUnit, setting.perUnit == 1 ? 0 : 1);
}

// Appends an item to a list: "a", "a or b", "a, b or c".
std::string Listed(const std::string& list, const std::string& item, bool last) {
    if (list.empty()) return item;
    return list + (last ? " or " : ", ") + item;
}

// Appends the setting's unit, in the singular for 1.
std::string WithUnit(const Setting& setting, const std::string& text) {
    std::string_view unit = setting.unit;
    if (unit.empty()) return text;
    if (text == "1" && unit.ends_with('s')) unit.remove_suffix(1);
    return text + " " + std::string(unit);
}

// Parses a number, optionally followed by blanks and a unit. Returns it in the setting's unit.
std::optional<double> NumberInUnit(const Setting& setting, std::string_view text) {
    const auto numberBefore = [&](std::string_view unit) -> std::optional<double> {
        if (unit.empty() || !text.ends_with(unit)) return std::nullopt;
        std::string_view number = text.substr(0, text.size() - unit.size());
        while (number.ends_with(' ')) number.remove_suffix(1);
        return ParseNumber(number);
    };
    if (const auto number = ParseNumber(text)) return number;
    if (const auto number = numberBefore(setting.unit)) return number;
    if (std::string_view(setting.unit) != "mm") return std::nullopt;
    const auto inches = numberBefore("in");
    if (!inches) return std::nullopt;
    return std::round(*inches * kMmPerInch * setting.perUnit) / setting.perUnit;
}

bool Takes(const Setting& setting, int value) {
    if (setting.numbers.empty()) return value >= setting.least && value <= setting.most;
    return std::find(setting.numbers.begin(), setting.numbers.end(), value) != setting.numbers.end();
}

}  // namespace

bool Setting::IsSwitch() const {
    return words.data() == kSwitchWords;
}

std::span<const Setting> Settings() {
    return kSettings;
}

const Setting& FindSetting(std::string_view option) {
    for (const Setting& setting : kSettings) {
        if (setting.option == option) return setting;
    }
    throw std::logic_error("no setting " + std::string(option));
}

int ReadSetting(const DeviceMode& mode, const Setting& setting) {
    // Puts the field at the upper end of a word, so that the shift extends its sign.
    const auto* const bytes = reinterpret_cast<const uint8_t*>(&mode) + setting.field.offset;
    const size_t missing = sizeof(int32_t) - setting.field.size;
    int32_t value = 0;
    memcpy(reinterpret_cast<uint8_t*>(&value) + missing, bytes, setting.field.size);
    return value >> (8 * missing);
}

void WriteSetting(DeviceMode& mode, const Setting& setting, int value) {
    // The lower bytes come first: the record is little-endian.
    const int32_t dword = value;
    auto* const bytes = reinterpret_cast<uint8_t*>(&mode);
    memcpy(bytes + setting.field.offset, &dword, setting.field.size);
    if (setting.switchedOn.size != 0) {
        const int32_t on = 1;
        memcpy(bytes + setting.switchedOn.offset, &on, setting.switchedOn.size);
    }
    mode.pub.dmFields |= setting.flag;
}

int ParseSetting(const Setting& setting, std::string_view text) {
    for (const SettingWord& word : setting.words) {
        if (word.word == text) return word.value;
    }
    if (setting.words.empty()) {
        if (const auto number = NumberInUnit(setting, text)) {
            const double steps = *number * setting.perUnit;
            const double whole = std::round(steps);
            if (std::abs(steps - whole) < 1e-6 && std::abs(whole) < 1e6 &&
                Takes(setting, static_cast<int>(whole))) {
                return static_cast<int>(whole);
            }
        }
    }
    throw WrongValue(setting.option, text, RangeText(setting));
}

std::string RangeText(const Setting& setting) {
    std::string list;
    if (!setting.words.empty()) {
        // The last word for the alignment is another spelling.
        size_t count = setting.words.size();
        if (setting.words.data() == kAlignmentWords) --count;
        for (size_t i = 0; i < count; ++i) list = Listed(list, setting.words[i].word, i + 1 == count);
        return list;
    }
    for (size_t i = 0; i < setting.numbers.size(); ++i) {
        list = Listed(list, NumberText(setting, setting.numbers[i]), i + 1 == setting.numbers.size());
    }
    if (list.empty()) list = NumberText(setting, setting.least) + " to " + NumberText(setting, setting.most);
    return WithUnit(setting, list);
}

std::string ValueText(const Setting& setting, int value) {
    for (const SettingWord& word : setting.words) {
        if (word.value == value) return word.word;
    }
    return WithUnit(setting, NumberText(setting, value));
}

}  // namespace orvex::tools::print
