#include "tools/orvexprint/test_page.h"

#include <algorithm>
#include <cmath>

#include "tools/common/number_text.h"
#include "tools/orvexprint/barcode.h"

namespace orvex::tools::print {

namespace {

constexpr char kBarcodeText[] = "ORVEX 39";

constexpr int kRulerMm = 6;      // room for a ruler with its numbers
constexpr int kGapMm = 2;        // between the parts of the page
constexpr int kWedgeSteps = 10;  // from blank to full

struct Wedge {
    const char* name;
    uint32_t color;
};
constexpr Wedge kWedges[] = {
    {"black", 0x000000}, {"cyan", 0x00FFFF}, {"magenta", 0xFF00FF}, {"yellow", 0xFFFF00}};

// The page, measured in millimeters.
class Sheet {
  public:
    Sheet(Canvas& canvas, int dpi)
        : canvas_(canvas), pixelsPerMm_(dpi / kMmPerInch), textScale_(std::max(Px(0.2), 1)) {}

    Canvas& Pixels() { return canvas_; }
    int Px(double mm) const { return static_cast<int>(std::lround(mm * pixelsPerMm_)); }
    double WidthMm() const { return canvas_.Width() / pixelsPerMm_; }
    double HeightMm() const { return canvas_.Height() / pixelsPerMm_; }

    void Fill(double x, double y, double width, double height, uint32_t color) {
        canvas_.Fill(Px(x), Px(y), std::max(Px(x + width) - Px(x), 1), std::max(Px(y + height) - Px(y), 1),
                     color);
    }
    // Returns the size of a dot in pixels; letters are about 1.5 mm high unless they are made smaller.
    int TextScale() const { return textScale_; }
    void SetTextScale(int scale) { textScale_ = scale; }
    double TextWidthMm(std::string_view text) const {
        return Canvas::TextWidth(text, textScale_) / pixelsPerMm_;
    }
    double TextLineMm() const { return kTextLineDots * textScale_ / pixelsPerMm_; }
    // Returns the width from `x` to the margin on the right.
    double RoomMm(double x) const { return WidthMm() - kGapMm - x; }
    // Writes a line in letters that are as small as the width asks for; leaves it out where even the smallest
    // are too large.
    void Text(double x, double y, std::string_view text, double width) {
        int scale = textScale_;
        while (scale > 0 && Canvas::TextWidth(text, scale) > Px(width)) --scale;
        if (scale > 0) canvas_.Text(Px(x), Px(y), scale, text, kBlack);
    }
    void Text(double x, double y, std::string_view text) { Text(x, y, text, RoomMm(x)); }

  private:
    Canvas& canvas_;
    double pixelsPerMm_;
    int textScale_;
};

void DrawCornerMarks(Sheet& sheet) {
    const int length = sheet.Px(5);
    const int thick = std::max(sheet.Px(0.3), 1);
    const int right = sheet.Pixels().Width();
    const int bottom = sheet.Pixels().Height();
    for (const int x : {0, right - length}) {
        for (const int y : {0, bottom - thick}) sheet.Pixels().Fill(x, y, length, thick, kBlack);
    }
    for (const int x : {0, right - thick}) {
        for (const int y : {0, bottom - length}) sheet.Pixels().Fill(x, y, thick, length, kBlack);
    }
}

double TickLength(int mm) {
    return mm % 10 == 0 ? 3 : mm % 5 == 0 ? 2.2 : 1.4;
}

void DrawRulers(Sheet& sheet) {
    constexpr double kTick = 0.1;
    for (int mm = kRulerMm; mm < static_cast<int>(sheet.WidthMm()); ++mm) {
        sheet.Fill(mm, 0, kTick, TickLength(mm), kBlack);
        if (mm % 10 == 0) sheet.Text(mm - 0.8, 3.3, std::to_string(mm));
    }
    for (int mm = kRulerMm; mm < static_cast<int>(sheet.HeightMm()); ++mm) {
        sheet.Fill(0, mm, TickLength(mm), kTick, kBlack);
        if (mm % 10 == 0 && mm + sheet.TextLineMm() < sheet.HeightMm())
            sheet.Text(3.3, mm - 0.8, std::to_string(mm));
    }
}

double DrawArrow(Sheet& sheet, double y, const TestPageText& text) {
    constexpr double kHeight = 8;
    constexpr double kHead = 4;
    const double x = kRulerMm + kGapMm + kHead / 2;
    const int rows = sheet.Px(kHead);
    for (int row = 0; row < rows; ++row) {
        const int half = row / 2;
        sheet.Pixels().Fill(sheet.Px(x) - half, sheet.Px(y) + row, 2 * half + 1, 1, kBlack);
    }
    sheet.Fill(x - 0.5, y + kHead, 1, kHeight - kHead, kBlack);
    const std::string_view lines[] = {"TOP OF THE PAGE", text.program, text.date};
    for (size_t i = 0; i < std::size(lines); ++i)
        sheet.Text(x + kHead, y + 1 + static_cast<double>(i) * sheet.TextLineMm(), lines[i]);
    return kHeight;
}

// Returns the color of a wedge's step, an ink mixed with the white of the label.
uint32_t Tint(uint32_t color, int step) {
    uint32_t tint = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int channel = static_cast<int>(color >> shift & 0xFF);
        tint |= static_cast<uint32_t>(255 - (255 - channel) * step / kWedgeSteps) << shift;
    }
    return tint;
}

// Writes the amount of ink above the steps of the wedges, at as many of them as there is room for.
void DrawPercentages(Sheet& sheet, double left, double y, double step) {
    const double room = sheet.TextWidthMm("100 %") + 1;
    int every = 1;
    while (every < kWedgeSteps && (every * step < room || kWedgeSteps % every != 0)) ++every;
    for (int i = 0; i <= kWedgeSteps; i += every) {
        const std::string percent = std::to_string(i * 100 / kWedgeSteps) + " %";
        const double width = sheet.TextWidthMm(percent);
        sheet.Text(std::min(left + i * step, sheet.WidthMm() - kGapMm - width), y, percent);
    }
}

double DrawWedges(Sheet& sheet, double y, const TestPageText&) {
    constexpr double kBar = 4;
    const double names = std::min(sheet.WidthMm() / 6, sheet.TextWidthMm(kWedges[2].name));
    const double left = kRulerMm + kGapMm + names + 1;
    const double step = std::min((sheet.WidthMm() - left - kGapMm) / (kWedgeSteps + 1), 8.0);
    DrawPercentages(sheet, left, y, step);
    double top = y + sheet.TextLineMm();
    for (const Wedge& wedge : kWedges) {
        sheet.Text(kRulerMm + kGapMm, top + 1, wedge.name, names);
        for (int i = 0; i <= kWedgeSteps; ++i)
            sheet.Fill(left + i * step, top, step, kBar, Tint(wedge.color, i));
        top += kBar;
    }
    return top - y;
}

// Draws vertical and horizontal lines of one to four pixels, with gaps as wide.
double DrawFineLines(Sheet& sheet, double y, const TestPageText&) {
    constexpr double kSide = 5;
    const int side = sheet.Px(kSide);
    const int top = sheet.Px(y);
    int left = sheet.Px(kRulerMm + kGapMm);
    const int right = sheet.Px(sheet.WidthMm() - kGapMm);
    for (int width = 1; width <= 4 && left + 2 * side + sheet.Px(1) <= right; ++width) {
        for (int at = 0; at + width <= side; at += 2 * width) {
            sheet.Pixels().Fill(left + at, top, width, side, kBlack);
            sheet.Pixels().Fill(left + side + sheet.Px(1), top + at, side, width, kBlack);
        }
        left += 2 * side + sheet.Px(kGapMm);
    }
    return kSide;
}

double DrawBarcode(Sheet& sheet, double y, const TestPageText&) {
    constexpr double kHeight = 8;
    const std::string modules = Code39(kBarcodeText);
    const int left = sheet.Px(kRulerMm + kGapMm);
    const int widest = (sheet.Px(sheet.WidthMm() - kGapMm) - left) / static_cast<int>(modules.size());
    const int module = std::min(std::max(sheet.Px(0.25), 1), widest);
    if (module < 1) return 0;
    for (size_t i = 0; i < modules.size(); ++i) {
        if (modules[i] != '1') continue;
        sheet.Pixels().Fill(left + static_cast<int>(i) * module, sheet.Px(y), module, sheet.Px(kHeight),
                            kBlack);
    }
    sheet.Text(kRulerMm + kGapMm, y + kHeight + 0.5, kBarcodeText);
    return kHeight + 0.5 + sheet.TextLineMm();
}

// The settings below the heading: lines of names and values, in columns side by side.
struct SettingLines {
    double names = 0;   // mm, with the gap after them
    double column = 0;  // mm, of name, value and the gap after them
    int columns = 0;
    int perColumn = 0;
    std::vector<NamedValue> lines;

    bool Fit() const {
        return columns > 0 && static_cast<size_t>(columns) * static_cast<size_t>(perColumn) >= lines.size();
    }
};

// Breaks a value into lines of `width`, at blanks where there are any.
void AddWrapped(const Sheet& sheet, const NamedValue& setting, double width, std::vector<NamedValue>& lines) {
    std::string name = setting.name;
    std::string rest = setting.value;
    do {
        size_t length = rest.size();
        while (length > 1 && sheet.TextWidthMm(rest.substr(0, length)) > width) --length;
        const size_t blank = rest.rfind(' ', length);
        if (length < rest.size() && blank != std::string::npos && blank > 0) length = blank;
        lines.push_back({name, rest.substr(0, length)});
        rest.erase(0, rest.find_first_not_of(' ', length));
        name.clear();
    } while (!rest.empty());
}

// The values have room for ten letters, or there are no columns.
SettingLines LaySettings(const Sheet& sheet, double top, const std::vector<NamedValue>& settings) {
    SettingLines lay;
    double values = 0;
    for (const NamedValue& each : settings) {
        lay.names = std::max(lay.names, sheet.TextWidthMm(each.name) + sheet.TextWidthMm("00"));
        values = std::max(values, sheet.TextWidthMm(each.value));
    }
    const double room = sheet.RoomMm(kRulerMm + kGapMm);
    const double least = std::min(values, sheet.TextWidthMm("0123456789"));
    values = std::min(values, room - lay.names);
    if (values < least) return lay;
    for (const NamedValue& each : settings) AddWrapped(sheet, each, values, lay.lines);
    lay.column = lay.names + values + kGapMm;
    lay.columns = static_cast<int>((room + kGapMm) / lay.column);
    lay.perColumn = std::max(static_cast<int>((sheet.HeightMm() - kGapMm - top) / sheet.TextLineMm()), 0);
    return lay;
}

// Draws the settings. On small labels the letters shrink before lines are left out.
void DrawSettings(Sheet& sheet, double y, const TestPageText& text) {
    const double left = kRulerMm + kGapMm;
    std::vector<NamedValue> heading;
    AddWrapped(sheet, {"", text.heading}, sheet.RoomMm(left), heading);
    const double top = y + (static_cast<double>(heading.size()) + 0.5) * sheet.TextLineMm();
    if (top > sheet.HeightMm() - kGapMm) return;
    for (const NamedValue& line : heading) {
        sheet.Text(left, y, line.value);
        y += sheet.TextLineMm();
    }
    SettingLines lay = LaySettings(sheet, top, text.values);
    while (!lay.Fit() && sheet.TextScale() > 1) {
        sheet.SetTextScale(sheet.TextScale() - 1);
        lay = LaySettings(sheet, top, text.values);
    }
    const auto perColumn = static_cast<size_t>(lay.perColumn);
    const size_t shown = std::min(lay.lines.size(), perColumn * static_cast<size_t>(lay.columns));
    for (size_t i = 0; i < shown; ++i) {
        const size_t column = i / perColumn;
        const double x = left + static_cast<double>(column) * lay.column;
        const double lineTop = top + static_cast<double>(i % perColumn) * sheet.TextLineMm();
        sheet.Text(x, lineTop, lay.lines[i].name);
        sheet.Text(x + lay.names, lineTop, lay.lines[i].value);
    }
}

}  // namespace

void DrawTestPage(Canvas& page, int dpi, const TestPageText& text) {
    Sheet sheet(page, dpi);
    DrawCornerMarks(sheet);
    DrawRulers(sheet);

    struct Part {
        double height;  // mm, at most
        double (*draw)(Sheet&, double, const TestPageText&);
    };
    const Part kParts[] = {{8, DrawArrow}, {19, DrawWedges}, {5, DrawFineLines}, {12, DrawBarcode}};
    double y = kRulerMm + kGapMm;
    for (const Part& part : kParts) {
        if (y + part.height > sheet.HeightMm() - kGapMm) return;
        y += part.draw(sheet, y, text) + kGapMm;
    }
    DrawSettings(sheet, y, text);
}

}  // namespace orvex::tools::print
