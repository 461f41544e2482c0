#include "tools/orvexprint/paper_choice.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <utility>

#include "driver/config/label_sizes.h"
#include "driver/support/text.h"
#include "tools/common/number_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/name_search.h"
#include "tools/orvexprint/setting_table.h"

namespace orvex::tools::print {

namespace {

constexpr double kTenthsPerMm = 10;
constexpr double kTenthsPerInch = 254;
constexpr uint32_t kPaperFields = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_FORMNAME;

struct NamedSize {
    std::string_view name;  // in small letters
    PaperSize size;
};
constexpr NamedSize kNamedSizes[] = {{"a3", {2970, 4200}}, {"a4", {2100, 2970}},     {"a5", {1480, 2100}},
                                     {"a6", {1050, 1480}}, {"a7", {740, 1050}},      {"a8", {520, 740}},
                                     {"a9", {370, 520}},   {"letter", {2159, 2794}}, {"legal", {2159, 3556}}};

struct LengthUnit {
    std::string_view name;
    double tenths;  // of a millimeter
};
constexpr LengthUnit kLengthUnits[] = {
    {"mm", kTenthsPerMm}, {"cm", 10 * kTenthsPerMm}, {"in", kTenthsPerInch}};

std::string_view Trimmed(std::string_view text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

// Removes a unit from the end of a length, and returns it in tenths of a millimeter.
std::optional<double> TakeUnit(std::string_view& length) {
    for (const LengthUnit& unit : kLengthUnits) {
        if (!length.ends_with(unit.name)) continue;
        length = Trimmed(length.substr(0, length.size() - unit.name.size()));
        return unit.tenths;
    }
    return std::nullopt;
}

// Returns the length in tenths of a millimeter, rounded and limited to what a device mode's field holds.
int Tenths(double length) {
    return static_cast<int>(std::clamp(length + 0.5, 0.0, 32767.0));
}

int ParseTenths(std::string_view number, double perUnit) {
    std::string text(number);
    std::replace(text.begin(), text.end(), ',', '.');
    return Tenths(ParseNumber(text).value_or(0) * perUnit);
}

// Returns the size, 0 x 0 for a text that is none.
PaperSize SizeFromText(const std::string& text) {
    for (const NamedSize& named : kNamedSizes) {
        if (text == named.name) return named.size;
    }
    const size_t cross = text.find('x');
    if (cross == std::string::npos) return {};
    std::string_view width = Trimmed(std::string_view(text).substr(0, cross));
    std::string_view length = Trimmed(std::string_view(text).substr(cross + 1));
    const double lengthUnit = TakeUnit(length).value_or(kTenthsPerMm);
    const double widthUnit = TakeUnit(width).value_or(lengthUnit);
    return {ParseTenths(width, widthUnit), ParseTenths(length, lengthUnit)};
}

// Returns the label of that name or number, or of that name in any case; null if there is none.
const LabelSize* FindLabel(std::string_view name, const std::vector<LabelSize>& labels) {
    const std::optional<int> number = ParseWhole(name);
    const std::string small = InSmallLetters(name);
    const std::function<bool(const LabelSize&)> matches[] = {
        [&](const LabelSize& label) { return NameOf(label) == name; },
        [&](const LabelSize& label) { return number == label.number; },
        [&](const LabelSize& label) { return InSmallLetters(NameOf(label)) == small; }};
    for (const auto& match : matches) {
        const auto found = std::find_if(labels.begin(), labels.end(), match);
        if (found != labels.end()) return &*found;
    }
    return nullptr;
}

// Returns the extent of a page in tenths of a millimeter. It may be less than a pixel shorter, since a
// program may have rounded the number of pixels up.
int TenthsOfPage(uint32_t pixels, double perMeter, int least, int most) {
    constexpr double kTenthsPerMeter = 10000;
    const double nearest = std::floor(pixels / perMeter * kTenthsPerMeter + 0.5);
    const double onePixelLess = std::ceil((pixels - 1) / perMeter * kTenthsPerMeter);
    return static_cast<int>(
        std::clamp(std::max(nearest, onePixelLess), static_cast<double>(least), static_cast<double>(most)));
}

void WriteText(WCHAR (&field)[CCHFORMNAME], const std::u16string& text) {
    CopyText(field, {AsWchar(text), text.size()});
}

}  // namespace

PaperSize ParsePaperSize(std::string_view text) {
    const PaperSize size = SizeFromText(InSmallLetters(text));
    if (size.width < kLeastPaper.width || size.width > kMostPaper.width || size.length < kLeastPaper.length ||
        size.length > kMostPaper.length) {
        throw WrongValue("--size", text,
                         "WIDTHxLENGTH in mm, cm or in, from " + PaperText(kLeastPaper) + " to " +
                             PaperText(kMostPaper) + ", such as 100x150mm or 4x6in; " + kNamedPapers);
    }
    return size;
}

PaperSize PaperOfPage(const PictureSize& page, const PixelDensity& density, bool landscape) {
    const PaperSize& least = kLeastPaper;
    const PaperSize& most = kMostPaper;
    if (landscape) {
        return {TenthsOfPage(page.height, density.y, least.width, most.width),
                TenthsOfPage(page.width, density.x, least.length, most.length)};
    }
    return {TenthsOfPage(page.width, density.x, least.width, most.width),
            TenthsOfPage(page.height, density.y, least.length, most.length)};
}

std::string PaperText(PaperSize size) {
    return DecimalText(size.width / kTenthsPerMm, 1) + " x " + DecimalText(size.length / kTenthsPerMm, 1) +
           " mm";
}

void ChoosePaperSize(DeviceMode& mode, PaperSize size, const DeviceMode& defaults) {
    mode.pub.dmPaperSize = kPaperCustom;
    mode.pub.dmPaperWidth = static_cast<int16_t>(size.width);
    mode.pub.dmPaperLength = static_cast<int16_t>(size.length);
    mode.pub.dmFields |= kPaperFields;
    WriteText(mode.pub.dmFormName, u"Custom");
    if (defaults.priv.dmPaperSize >= kPaperFirstLabel && mode.priv.dmPaperSize < kPaperFirstLabel) {
        mode.priv.dmPaperSize = defaults.priv.dmPaperSize;
        mode.priv.units = defaults.priv.units;
        CopyText(mode.priv.labelName, FieldText(defaults.priv.labelName));
        CopyText(mode.priv.width_string, FieldText(defaults.priv.width_string));
        CopyText(mode.priv.length_string, FieldText(defaults.priv.length_string));
    }
}

void ChooseLabel(DeviceMode& mode, std::string_view name, const std::vector<LabelSize>& labels) {
    const LabelSize* const label = FindLabel(name, labels);
    if (label == nullptr) {
        std::vector<std::string> names;
        names.reserve(labels.size());
        for (const LabelSize& each : labels) names.push_back(NameOf(each));
        throw WrongValue("--label", name,
                         names.empty() ? "the labels of the printer, which has none"
                                       : NearestNames(name, std::move(names), "labels"));
    }
    const PaperSize size = SizeOf(*label);
    mode.pub.dmPaperSize = static_cast<int16_t>(label->number);
    mode.pub.dmPaperWidth = static_cast<int16_t>(size.width);
    mode.pub.dmPaperLength = static_cast<int16_t>(size.length);
    mode.pub.dmFields |= kPaperFields;
    WriteText(mode.pub.dmFormName, Wide(NameOf(*label)));
    mode.priv.dmPaperSize = static_cast<int16_t>(label->number);
    mode.priv.units = label->units;
    CopyText(mode.priv.labelName, FieldText(label->name));
    CopyText(mode.priv.width_string, FieldText(label->width));
    CopyText(mode.priv.length_string, FieldText(label->length));
}

PaperSize SizeOf(const LabelSize& label) {
    return {LabelLengthTenthsMm(FieldText(label.width), label.units),
            LabelLengthTenthsMm(FieldText(label.length), label.units)};
}

std::string NameOf(const LabelSize& label) {
    return Utf8FromNarrow(FieldText(label.name));
}

std::string SizeTextOf(const LabelSize& label) {
    const char* const unit = label.units == kUnitsMillimeters ? " mm"
                             : label.units == kUnitsInches    ? " in"
                                                              : " x 0.1 mm";
    return std::string(FieldText(label.width)) + " x " + std::string(FieldText(label.length)) + unit;
}

}  // namespace orvex::tools::print
