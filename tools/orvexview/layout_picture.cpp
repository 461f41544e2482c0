#include "tools/orvexview/layout_picture.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tools/common/canvas.h"
#include "tools/common/number_text.h"

namespace orvex::tools::view {

namespace {

constexpr int64_t kTickLength = 6;
constexpr int64_t kLongTickLength = 12;
constexpr uint32_t kLeastBetweenNumbers = 32;  // pixels of the picture
constexpr uint32_t kLegendIndent = 24;         // of the legend's texts, after their marks
constexpr uint32_t kLegendEdge = 6;            // around the legend

enum class Mark { kHead, kLabel, kFill, kPurge, kArrow, kNone };

struct LegendLine {
    Mark mark;
    std::string text;
};

void DrawText(Picture& picture, int64_t x, int64_t y, std::string_view text) {
    for (const LetterStroke& stroke : LetterStrokes(text)) {
        FillRectangle(picture, x + stroke.x, y + stroke.y, stroke.width, stroke.height, kTextColor);
    }
}

// Draws an arrow of 16 x 9 pixels, or 9 x 16 if it points up.
void DrawArrow(Picture& picture, int64_t x, int64_t y, bool up) {
    constexpr int64_t kHalf = 4;
    for (int64_t i = 0; i < 4 * kHalf; ++i) {
        const int64_t reach = i <= kHalf ? i : 0;
        if (up) {
            FillRectangle(picture, x + kHalf - reach, y + i, 2 * reach + 1, 1, kTextColor);
        } else {
            FillRectangle(picture, x + i, y + kHalf - reach, 1, 2 * reach + 1, kTextColor);
        }
    }
}

// Puts the inks of an area on colored paper.
void Tint(Picture& picture, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom, Rgb paper) {
    for (uint32_t y = top; y < bottom; ++y) {
        for (uint32_t x = left; x < right; ++x) {
            uint8_t* pixel = picture.At(x, y);
            pixel[0] = static_cast<uint8_t>(pixel[0] * paper.red / 255);
            pixel[1] = static_cast<uint8_t>(pixel[1] * paper.green / 255);
            pixel[2] = static_cast<uint8_t>(pixel[2] * paper.blue / 255);
        }
    }
}

void TintBlock(Picture& block, const PagePlacement& placement, uint32_t scale) {
    const uint32_t imageTop = placement.imageTop / scale;
    const uint32_t imageBottom = (placement.imageTop + placement.imageRows + scale - 1) / scale;
    Tint(block, 0, 0, block.width, imageTop, kFillPaper);
    Tint(block, 0, imageBottom, block.width, block.height, kFillPaper);
    const uint32_t imageLeft = placement.imageLeft / scale;
    const uint32_t imageRight = (placement.imageLeft + placement.imageWidth + scale - 1) / scale;
    Tint(block, 0, imageTop, imageLeft, imageBottom, kPurgePaper);
    Tint(block, imageRight, imageTop, block.width, imageBottom, kPurgePaper);
}

std::string RowsAndMm(uint32_t rows, uint32_t dpi) {
    return std::to_string(rows) + " rows (" + MmText(rows, dpi) + " mm)";
}

std::string LabelLine(const PrintFile& file, const PagePlacement& placement) {
    const bool portrait = placement.orientation == Orientation::kPortrait;
    const uint32_t width = portrait ? placement.imageRows : placement.imageWidth;
    const uint32_t height = portrait ? placement.imageWidth : placement.imageRows;
    return "label: " + SizeText(width, height) + " pixels, " + MmText(width, file.dpi) + " x " +
           MmText(height, file.dpi) + " mm";
}

// Returns how far the label is from both ends of the head. The first row of the head is its left one.
std::string DistanceLine(const PrintFile& file, const PagePlacement& placement) {
    const uint32_t left = placement.headTop + placement.imageTop;
    const uint32_t end = left + placement.imageRows;
    const std::string fromLeft = RowsAndMm(left, file.dpi) + " from the left end of the head, ";
    if (end > placement.headRows) {
        return fromLeft + RowsAndMm(end - placement.headRows, file.dpi) + " beyond its right end";
    }
    return fromLeft + RowsAndMm(placement.headRows - end, file.dpi) + " from its right end";
}

std::vector<LegendLine> Legend(const PrintFile& file, const PagePlacement& placement) {
    std::vector<LegendLine> lines = {
        {Mark::kHead, "print head: " + RowsAndMm(placement.headRows, file.dpi) + ", a tick every 10 mm"},
        {Mark::kLabel, LabelLine(file, placement)},
        {Mark::kNone, DistanceLine(file, placement)}};
    if (placement.imageTop + placement.fillBottom > 0) {
        lines.push_back({Mark::kFill, "fill: " + RowsAndMm(placement.imageTop, file.dpi) + " at the left, " +
                                          RowsAndMm(placement.fillBottom, file.dpi) + " at the right"});
    }
    if (placement.purgeWidth > 0) {
        lines.push_back({Mark::kPurge, "purge bar: " + std::to_string(placement.purgeWidth) + " pixels (" +
                                           MmText(placement.purgeWidth, file.dpi) + " mm) " +
                                           (placement.PurgeLeads() ? "in front of" : "behind") +
                                           " the label"});
    }
    lines.push_back({Mark::kArrow, "paper feed; left and right are those of the alignment"});
    return lines;
}

uint32_t LegendWidth(const std::vector<LegendLine>& legend) {
    int width = 0;
    for (const LegendLine& line : legend) width = std::max(width, Canvas::TextWidth(line.text, 1));
    return kLegendIndent + static_cast<uint32_t>(width) + 2 * kLegendEdge;
}

class LayoutPainter {
  public:
    LayoutPainter(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                  Picture block, const LayoutView& view)
        : dpi_(file.dpi),
          placement_(placement),
          scale_(view.scale),
          turned_(view.turned),
          along_(block.width),
          // A block that starts between two lines of the picture may need one line more.
          head_((LayoutRows(page, placement) + scale_ - 1) / scale_ + 1),
          legend_(Legend(file, placement)) {
        legend_.push_back({Mark::kNone, "one pixel is " + SizeText(scale_, scale_) + " of the printer's " +
                                            std::to_string(dpi_) + " dpi"});
        constexpr int64_t kMargins = 2 * int64_t{kLayoutMargin};
        const uint32_t width = (turned_ ? head_ : along_) + kMargins;
        bodyHeight_ = (turned_ ? along_ : head_) + kMargins;
        const auto legendHeight = static_cast<uint32_t>(legend_.size()) * kTextLineDots + 2 * kLegendEdge;
        picture_ = Picture(std::max(width, LegendWidth(legend_)), bodyHeight_ + legendHeight, 3);
        FillRectangle(picture_, 0, 0, picture_.width, picture_.height, kPaperWhite);
        DrawHead();
        DrawBlock(std::move(block));
        DrawSides();
        DrawLegend();
    }

    Picture Finish() { return std::move(picture_); }

  private:
    // A rectangle along the row and across the head, in pixels of the picture from the head's first row and
    // the block's first pixel.
    struct Place {
        int64_t x, y, width, height;
    };
    Place PlaceOf(int64_t along, int64_t row, int64_t length, int64_t rows) const {
        constexpr int64_t kM = kLayoutMargin;
        if (turned_) return {kM + head_ - row - rows, kM + along, rows, length};
        return {kM + along, kM + row, length, rows};
    }

    void Fill(int64_t along, int64_t row, int64_t length, int64_t rows, Rgb color) {
        const Place place = PlaceOf(along, row, length, rows);
        FillRectangle(picture_, place.x, place.y, place.width, place.height, color);
    }

    void DrawHead() {
        constexpr int64_t kM = kLayoutMargin;
        Fill(-kM, 0, along_ + 2 * kM, placement_.headRows / scale_, kHeadColor);
        const uint32_t pixelsPer50Mm = std::max(dpi_ * 500 / 254 / scale_, 1u);
        const uint32_t step = 50 * ((kLeastBetweenNumbers + pixelsPer50Mm - 1) / pixelsPer50Mm);
        for (uint32_t mm = 0;; mm += 10) {
            const uint32_t row = mm * dpi_ * 10 / 254;
            if (row >= placement_.headRows) return;
            const int64_t length = mm % 50 == 0 ? kLongTickLength : kTickLength;
            const int64_t at = row / scale_;
            Fill(-kM, at, length, 1, kTickColor);
            Fill(along_ + kM - length, at, length, 1, kTickColor);
            if (mm % step == 0) DrawNumber(at, std::to_string(mm));
        }
    }

    // Writes a number beside its tick.
    void DrawNumber(int64_t row, const std::string& text) {
        const Place tick = PlaceOf(-int64_t{kLayoutMargin}, row, kLongTickLength, 1);
        if (turned_) {
            DrawText(picture_, tick.x - Canvas::TextWidth(text, 1) / 2, tick.y + tick.height + 3, text);
        } else {
            DrawText(picture_, tick.x + tick.width + 3, tick.y - 3, text);
        }
    }

    void DrawBlock(Picture block) {
        TintBlock(block, placement_, scale_);
        const int64_t top = placement_.headTop / scale_;
        const Place place = PlaceOf(0, top, block.width, block.height);
        if (turned_) block = TurnClockwise(block);
        PastePicture(picture_, static_cast<uint32_t>(place.x), static_cast<uint32_t>(place.y), block);
        const Place image =
            PlaceOf(int64_t{placement_.imageLeft / scale_} - 1, top + placement_.imageTop / scale_ - 1,
                    (placement_.imageWidth + scale_ - 1) / scale_ + 2,
                    (placement_.imageRows + scale_ - 1) / scale_ + 2);
        OutlineRectangle(picture_, image.x, image.y, image.width, image.height, kImageOutline);
    }

    // Names the ends of the head and shows where the paper goes.
    void DrawSides() {
        constexpr int64_t kM = kLayoutMargin;
        if (turned_) {
            DrawText(picture_, 4, kM, "right");
            DrawText(picture_, kM + head_ + 8, kM, "left");
            DrawArrow(picture_, kM + head_ + 15, 10, true);
        } else {
            DrawText(picture_, kM, kM - 16, "left");
            DrawText(picture_, kM, kM + head_ + 8, "right");
            DrawArrow(picture_, 10, kM - 16, false);
        }
    }

    void DrawLegend() {
        int64_t y = bodyHeight_ + kLegendEdge;
        for (const LegendLine& line : legend_) {
            DrawMark(line.mark, y);
            DrawText(picture_, kLegendEdge + kLegendIndent, y, line.text);
            y += kTextLineDots;
        }
    }

    void DrawMark(Mark mark, int64_t y) {
        constexpr int64_t kWidth = 16;
        constexpr int64_t kHeight = 9;
        const auto box = [&](Rgb color) {
            FillRectangle(picture_, kLegendEdge, y - 1, kWidth, kHeight, color);
        };
        switch (mark) {
            case Mark::kHead:
                return box(kHeadColor);
            case Mark::kFill:
                return box(kFillPaper);
            case Mark::kPurge:
                return box(kPurgePaper);
            case Mark::kLabel:
                return OutlineRectangle(picture_, kLegendEdge, y - 1, kWidth, kHeight, kImageOutline);
            case Mark::kArrow:
                return DrawArrow(picture_, kLegendEdge, y - 1, turned_);
            case Mark::kNone:
                return;
        }
    }

    uint32_t dpi_;
    const PagePlacement& placement_;
    uint32_t scale_;
    bool turned_;
    int64_t along_;  // of the block, in pixels of the picture
    int64_t head_;   // of the head, in lines of the picture
    std::vector<LegendLine> legend_;
    int64_t bodyHeight_ = 0;  // of the picture without its legend
    Picture picture_;
};

}  // namespace

uint32_t LayoutRows(const PrintedPage& page, const PagePlacement& placement) {
    return std::max(placement.headRows, placement.headTop + page.rows);
}

std::vector<std::string> LayoutLegend(const PrintFile& file, const PagePlacement& placement) {
    std::vector<std::string> texts;
    for (LegendLine& line : Legend(file, placement)) texts.push_back(std::move(line.text));
    return texts;
}

Picture DrawLayout(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                   Picture block, const LayoutView& view) {
    return LayoutPainter(file, page, placement, std::move(block), view).Finish();
}

}  // namespace orvex::tools::view
