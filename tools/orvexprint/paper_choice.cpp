#include "tools/orvexprint/paper_choice.h"

#include <algorithm>
#include <optional>

#include "driver/config/label_sizes.h"
#include "driver/support/text.h"
#include "tools/common/number_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/setting_table.h"

namespace orvex::tools::print {

namespace {

constexpr double kTenthsPerMm = 10;
constexpr double kTenthsPerInch = 254;
constexpr uint32_t kPaperFields = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_FORMNAME;

std::string_view CutSuffix(std::string_view text, std::string_view suffix) {
    text.remove_suffix(suffix.size());
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

// Returns the length in tenths of a millimeter, rounded and limited to what a device mode's field holds.
int Tenths(double length, double perUnit) {
    return static_cast<int>(std::clamp(length * perUnit + 0.5, 0.0, 32767.0));
}

void WriteText(WCHAR (&field)[CCHFORMNAME], const std::u16string& text) {
    CopyText(field, {AsWchar(text), text.size()});
}

}  // namespace

PaperSize ParsePaperSize(std::string_view text) {
    std::string_view numbers = text;
    double perUnit = kTenthsPerMm;
    if (text.ends_with("mm")) {
        numbers = CutSuffix(text, "mm");
    } else if (text.ends_with("in")) {
        numbers = CutSuffix(text, "in");
        perUnit = kTenthsPerInch;
    }
    const size_t cross = std::min(numbers.find('x'), numbers.size());
    const std::optional<double> width = ParseNumber(numbers.substr(0, cross));
    const std::optional<double> length = ParseNumber(numbers.substr(std::min(cross + 1, numbers.size())));
    const PaperSize size = {Tenths(width.value_or(0), perUnit), Tenths(length.value_or(0), perUnit)};
    if (size.width < kLeastPaper.width || size.width > kMostPaper.width || size.length < kLeastPaper.length ||
        size.length > kMostPaper.length) {
        throw WrongValue("--size", text,
                         "WIDTHxLENGTH in mm or in, from " + PaperText(kLeastPaper) + " to " +
                             PaperText(kMostPaper) + ", such as 100x150mm or 4x6in");
    }
    return size;
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
    std::string names;
    for (const LabelSize& label : labels) {
        if (NameOf(label) != name) {
            names += (names.empty() ? "\"" : ", \"") + NameOf(label) + "\"";
            continue;
        }
        const PaperSize size = SizeOf(label);
        mode.pub.dmPaperSize = static_cast<int16_t>(label.number);
        mode.pub.dmPaperWidth = static_cast<int16_t>(size.width);
        mode.pub.dmPaperLength = static_cast<int16_t>(size.length);
        mode.pub.dmFields |= kPaperFields;
        WriteText(mode.pub.dmFormName, Wide(name));
        mode.priv.dmPaperSize = static_cast<int16_t>(label.number);
        mode.priv.units = label.units;
        CopyText(mode.priv.labelName, FieldText(label.name));
        CopyText(mode.priv.width_string, FieldText(label.width));
        CopyText(mode.priv.length_string, FieldText(label.length));
        return;
    }
    throw WrongValue("--label", name, labels.empty() ? "the labels of the printer, which has none" : names);
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
