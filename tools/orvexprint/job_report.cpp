#include "tools/orvexprint/job_report.h"

#include <cstdint>

#include "driver/config/device_mode.h"
#include "driver/support/text.h"
#include "tools/common/number_text.h"
#include "tools/common/wide_text.h"
#include "tools/orvexprint/setting_table.h"

namespace orvex::tools::print {

namespace {

constexpr double kUnitsPerInch = 7200;
constexpr size_t kNameColumn = 22;

std::string Padded(std::string text, size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

void Line(std::ostream& out, const std::string& name, const std::string& value) {
    out << "  " << Padded(name, kNameColumn) << value << "\n";
}

std::string Pixels(int32_t pixels, int dpi) {
    return std::to_string(pixels) + " pixels (" + MmText(pixels, dpi) + " mm)";
}

std::string Units(int32_t units) {
    return std::to_string(units) + " units (" + MmText(units / kUnitsPerInch, 1) + " mm)";
}

std::string ProfileOf(const DeviceMode& mode) {
    const WideView name = FieldText(mode.priv.colorProfile);
    if (name.empty()) return "none: the built-in conversion";
    return Utf8(std::u16string_view(reinterpret_cast<const char16_t*>(name.data()), name.size()));
}

std::string PurgeText(const DeviceMode& mode, const PageLayout& layout) {
    if (layout.purgeLen == 0) return "none";
    return std::to_string(layout.purgeLen) + " pixels, " + std::to_string(layout.purgeDots) +
           " of them inked, " + (layout.purgeLead != 0 ? "ahead of" : "behind") + " the page, " +
           (mode.priv.purgeFreq == 0 ? std::string("on the first page")
                                     : "every " + std::to_string(mode.priv.purgeFreq) + " pages");
}

void PrintPlacing(std::ostream& out, const DeviceMode& mode, const PageLayout& layout) {
    const int dpi = layout.dpi;
    Line(out, "row",
         Pixels(layout.rowWidth, dpi) + ", of which the page " + std::to_string(layout.imageWidth));
    Line(out, "purge bar", PurgeText(mode, layout));
    Line(out, "rows of the page", Pixels(layout.rows, dpi));
    Line(out, "fill rows before", std::to_string(layout.placed.fullTop));
    Line(out, "fill rows behind", std::to_string(layout.placed.fullBottom));
    Line(out, "rows of the block",
         Pixels(layout.headRows, dpi) + (layout.fullWidth ? ", the full width" : ""));
    Line(out, "print head", Pixels(HeadWidthPx(layout.dpi), dpi));
    Line(out, "print-head offset", Pixels(layout.phOffsetPx, dpi) + ", of the opposite sign to the setting");
    Line(out, "block begins at", Pixels(layout.placed.topOff, dpi));
}

void PrintEngineUnits(std::ostream& out, const PageLayout& layout) {
    Line(out, "a pixel", std::to_string(layout.unit) + " units of 1/7200 inch");
    Line(out, "image", Units(layout.imageWUnits) + " x " + Units(layout.imageHUnits));
    Line(out, "page", Units(layout.pageWUnits) + " x " + Units(layout.pageHUnits));
    Line(out, "page as announced", Units(layout.pageWUnits) + " x " + Units(layout.pageLengthUnits));
}

}  // namespace

std::string PaperLine(const DeviceMode& mode) {
    const bool landscape = mode.pub.dmOrientation == DMORIENT_LANDSCAPE;
    return std::to_string(mode.pub.dmPrintQuality) + " dpi, " +
           PaperText({mode.pub.dmPaperWidth, mode.pub.dmPaperLength}) + ", " +
           (landscape ? "landscape" : "portrait");
}

std::vector<NamedValue> SettingValues(const DeviceMode& mode) {
    std::vector<NamedValue> values;
    for (const Setting& setting : Settings()) {
        constexpr size_t kDashes = 2;
        values.push_back({setting.option + kDashes, ValueText(setting, ReadSetting(mode, setting))});
    }
    values.push_back({"profile", ProfileOf(mode)});
    return values;
}

PageLayout LayoutOf(const DeviceMode& mode, const PageRaster& bitmap) {
    return ComputePageLayout(LayoutInput(mode, static_cast<int16_t>(bitmap.dpi),
                                         static_cast<int32_t>(bitmap.width),
                                         static_cast<int32_t>(bitmap.height)));
}

void PrintLayout(std::ostream& out, const DeviceMode& mode, const PageRaster& bitmap) {
    out << "Label: " << PaperLine(mode) << "\n"
        << "Bitmap: " << bitmap.width << " x " << bitmap.height << " pixels\n\nSettings\n";
    for (const NamedValue& each : SettingValues(mode)) Line(out, each.name, each.value);
    const PageLayout layout = LayoutOf(mode, bitmap);
    out << "\nUnder the print head\n";
    PrintPlacing(out, mode, layout);
    out << "\nTo the print engine\n";
    PrintEngineUnits(out, layout);
}

void PrintLists(std::ostream& out, const PrinterSettings& settings) {
    out << "Labels\n";
    if (settings.Labels().empty()) out << "  none\n";
    for (const LabelSize& label : settings.Labels()) {
        out << "  " << Padded(std::to_string(label.number), 6) << Padded(NameOf(label), 34)
            << SizeTextOf(label) << "\n";
    }
    const std::vector<InstalledProfile> profiles = settings.Profiles();
    out << "Colour profiles\n";
    if (profiles.empty()) out << "  none\n";
    for (const InstalledProfile& profile : profiles) {
        out << "  " << Padded(profile.fileName, 28) << profile.displayName << "\n";
    }
}

}  // namespace orvex::tools::print
