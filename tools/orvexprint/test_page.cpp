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
constexpr Wedge kWedges[] = {{"K", 0x000000}, {"C", 0x00FFFF}, {"M", 0xFF00FF}, {"Y", 0xFFFF00}};

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
    void Text(double x, double y, std::string_view text) {
        canvas_.Text(Px(x), Px(y), textScale_, text, kBlack);
    }

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
        if (mm % 10 == 0) sheet.Text(3.3, mm - 0.8, std::to_string(mm));
    }
}

double DrawArrow(Sheet& sheet, double y) {
    constexpr double kHeight = 8;
    constexpr double kHead = 4;
    const double x = kRulerMm + kGapMm + kHead / 2;
    const int rows = sheet.Px(kHead);
    for (int row = 0; row < rows; ++row) {
        const int half = row / 2;
        sheet.Pixels().Fill(sheet.Px(x) - half, sheet.Px(y) + row, 2 * half + 1, 1, kBlack);
    }
    sheet.Fill(x - 0.5, y + kHead, 1, kHeight - kHead, kBlack);
    sheet.Text(x + kHead, y + kHead - sheet.TextLineMm() / 2, "TOP OF THE PAGE");
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

double DrawWedges(Sheet& sheet, double y) {
    constexpr double kBar = 4;
    const double left = kRulerMm + kGapMm + 3;
    const double step = std::min((sheet.WidthMm() - left - kGapMm) / (kWedgeSteps + 1), 8.0);
    for (const Wedge& wedge : kWedges) {
        sheet.Text(left - 3, y + 1, wedge.name);
        for (int i = 0; i <= kWedgeSteps; ++i)
            sheet.Fill(left + i * step, y, step, kBar, Tint(wedge.color, i));
        y += kBar;
    }
    return kBar * static_cast<double>(std::size(kWedges));
}

// Draws vertical and horizontal lines of one to four pixels, with gaps as wide.
double DrawFineLines(Sheet& sheet, double y) {
    constexpr double kSide = 5;
    const int side = sheet.Px(kSide);
    const int top = sheet.Px(y);
    int left = sheet.Px(kRulerMm + kGapMm);
    for (int width = 1; width <= 4; ++width) {
        for (int at = 0; at + width <= side; at += 2 * width) {
            sheet.Pixels().Fill(left + at, top, width, side, kBlack);
            sheet.Pixels().Fill(left + side + sheet.Px(1), top + at, side, width, kBlack);
        }
        left += 2 * side + sheet.Px(kGapMm);
    }
    return kSide;
}

double DrawBarcode(Sheet& sheet, double y) {
    constexpr double kHeight = 8;
    const std::string modules = Code39(kBarcodeText);
    const int module = std::max(sheet.Px(0.25), 1);
    const int left = sheet.Px(kRulerMm + kGapMm);
    for (size_t i = 0; i < modules.size(); ++i) {
        if (modules[i] != '1') continue;
        sheet.Pixels().Fill(left + static_cast<int>(i) * module, sheet.Px(y), module, sheet.Px(kHeight),
                            kBlack);
    }
    sheet.Text(kRulerMm + kGapMm, y + kHeight + 0.5, kBarcodeText);
    return kHeight + 0.5 + sheet.TextLineMm();
}

// The arrangement of names and values below the heading, in pairs of columns.
struct Columns {
    double names;   // mm, with the gap after them
    double values;  // mm, with the gap after them
    int lines;      // per pair of columns
    int pairs;      // side by side

    bool Hold(size_t count) const { return static_cast<size_t>(lines) * static_cast<size_t>(pairs) >= count; }
};

Columns LayColumns(const Sheet& sheet, double top, const std::vector<NamedValue>& values) {
    Columns columns = {};
    for (const NamedValue& each : values) {
        columns.names = std::max(columns.names, sheet.TextWidthMm(each.name) + kGapMm);
        columns.values = std::max(columns.values, sheet.TextWidthMm(each.value) + kGapMm);
    }
    const double height = sheet.HeightMm() - kGapMm - top;
    const double width = sheet.WidthMm() - kRulerMm - kGapMm;
    columns.lines = std::max(static_cast<int>(height / sheet.TextLineMm()), 0);
    const double pair = columns.names + columns.values;
    columns.pairs = pair > 0 ? std::max(static_cast<int>(width / pair), 1) : 1;
    return columns;
}

// Draws the text. On small labels the letters shrink to as little as half their size before lines are left
// out.
void DrawText(Sheet& sheet, double y, const TestPageText& text) {
    const double left = kRulerMm + kGapMm;
    sheet.Text(left, y, text.heading);
    const double top = y + 1.5 * sheet.TextLineMm();
    const int smallest = (sheet.TextScale() + 1) / 2;
    Columns columns = LayColumns(sheet, top, text.values);
    while (!columns.Hold(text.values.size()) && sheet.TextScale() > smallest) {
        sheet.SetTextScale(sheet.TextScale() - 1);
        columns = LayColumns(sheet, top, text.values);
    }
    for (size_t i = 0; i < text.values.size() && columns.Hold(i + 1); ++i) {
        const size_t line = i % static_cast<size_t>(columns.lines),
                     pair = i / static_cast<size_t>(columns.lines);
        const double x = left + static_cast<double>(pair) * (columns.names + columns.values);
        const double lineTop = top + static_cast<double>(line) * sheet.TextLineMm();
        sheet.Text(x, lineTop, text.values[i].name);
        sheet.Text(x + columns.names, lineTop, text.values[i].value);
    }
}

}  // namespace

void DrawTestPage(Canvas& page, int dpi, const TestPageText& text) {
    Sheet sheet(page, dpi);
    DrawCornerMarks(sheet);
    DrawRulers(sheet);

    struct Part {
        double height;  // mm, at most
        double (*draw)(Sheet&, double);
    };
    const Part kParts[] = {{8, DrawArrow}, {16, DrawWedges}, {5, DrawFineLines}, {12, DrawBarcode}};
    double y = kRulerMm + kGapMm;
    for (const Part& part : kParts) {
        if (y + part.height > sheet.HeightMm() - kGapMm) return;
        y += part.draw(sheet, y) + kGapMm;
    }
    DrawText(sheet, y, text);
}

}  // namespace orvex::tools::print
