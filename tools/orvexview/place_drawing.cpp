#include <algorithm>

#include "tools/common/number_text.h"
#include "tools/orvexview/layout_picture.h"
#include "tools/orvexview/proof_page.h"

namespace orvex::tools::view {

namespace {

constexpr double kMargin = 14;  // mm around the head
constexpr double kTick = 10;    // mm from tick to tick
constexpr int kTicksPerNumber = 5;

// A drawing in mm. As in the layout's picture, the head's first row is at the right of a portrait page and
// at the top of a landscape one.
class PlacePainter {
  public:
    PlacePainter(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement)
        : placement_(placement),
          mmPerPixel_(kMmPerInch / file.dpi),
          turned_(placement.orientation == Orientation::kPortrait),
          along_(page.rowWidth * mmPerPixel_),
          across_(LayoutRows(page, placement) * mmPerPixel_) {
        const double width = (turned_ ? across_ : along_) + 2 * kMargin;
        const double height = (turned_ ? along_ : across_) + 2 * kMargin;
        svg_ = "<svg viewBox=\"0 0 " + Mm(width) + " " + Mm(height) + "\" width=\"" + Mm(width * 3) +
               "\" font-size=\"5\" role=\"img\" aria-label=\"The page under the print head\">\n";
        DrawHead();
        DrawBlock(page);
        DrawSides();
    }

    std::string Finish() { return svg_ + "</svg>\n"; }

  private:
    static std::string Mm(double mm) { return DecimalText(mm, 2); }

    struct Place {
        double x, y, width, height;
    };
    Place PlaceOf(double along, double row, double length, double rows) const {
        if (turned_) return {kMargin + across_ - row - rows, kMargin + along, rows, length};
        return {kMargin + along, kMargin + row, length, rows};
    }

    void Box(const Place& place, const char* style) {
        if (place.width <= 0 || place.height <= 0) return;
        svg_ += "<rect x=\"" + Mm(place.x) + "\" y=\"" + Mm(place.y) + "\" width=\"" + Mm(place.width) +
                "\" height=\"" + Mm(place.height) + "\" style=\"" + style + "\"/>\n";
    }

    void Text(double x, double y, const std::string& text, const char* anchor = "start") {
        svg_ += "<text x=\"" + Mm(x) + "\" y=\"" + Mm(y) + "\" text-anchor=\"" + anchor + "\">" + text +
                "</text>\n";
    }

    void DrawHead() {
        const double head = placement_.headRows * mmPerPixel_;
        Box(PlaceOf(-kMargin, 0, along_ + 2 * kMargin, head), "fill:var(--head)");
        for (int tick = 0; tick * kTick < head; ++tick) {
            const bool numbered = tick % kTicksPerNumber == 0;
            const Place mark = PlaceOf(-kMargin, tick * kTick, numbered ? 4 : 2, 0.3);
            Box(mark, "fill:currentColor");
            if (!numbered || tick == 0) continue;
            const std::string number = std::to_string(static_cast<int>(tick * kTick));
            if (turned_) {
                Text(mark.x, mark.y + 9, number, "middle");
            } else {
                Text(mark.x + 5, mark.y + 2, number);
            }
        }
    }

    void DrawBlock(const PrintedPage& page) {
        const double mm = mmPerPixel_;
        const double top = placement_.headTop * mm;
        const double imageTop = top + placement_.imageTop * mm;
        const double imageRows = placement_.imageRows * mm;
        const double imageLeft = placement_.imageLeft * mm;
        const double imageEnd = imageLeft + placement_.imageWidth * mm;
        Box(PlaceOf(0, top, along_, page.rows * mm), "fill:var(--fill)");
        Box(PlaceOf(0, imageTop, imageLeft, imageRows), "fill:var(--purge)");
        Box(PlaceOf(imageEnd, imageTop, along_ - imageEnd, imageRows), "fill:var(--purge)");
        const Place image = PlaceOf(imageLeft, imageTop, imageEnd - imageLeft, imageRows);
        Box(image, "fill:#fff;stroke:currentColor;stroke-width:.4");
        svg_ += "<g fill=\"#000\">";
        Text(image.x + image.width / 2, image.y + image.height / 2 + 2, "label", "middle");
        svg_ += "</g>";
    }

    void DrawSides() {
        if (turned_) {
            Text(1, kMargin + 5, "right");
            Text(kMargin + across_ + 1, kMargin + 5, "left");
            Text(0, 8, "\xE2\x86\x91 feed");
        } else {
            Text(kMargin + along_ / 2, kMargin - 2, "left", "middle");
            Text(kMargin + along_ / 2, kMargin + across_ + 6, "right", "middle");
            Text(0, 8, "\xE2\x86\x90 feed");
        }
    }

    const PagePlacement& placement_;
    double mmPerPixel_;
    bool turned_;
    double along_;   // mm of the block
    double across_;  // mm of the head, or more if the block is beyond it
    std::string svg_;
};

}  // namespace

std::string PlaceDrawing(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement) {
    return PlacePainter(file, page, placement).Finish();
}

}  // namespace orvex::tools::view
