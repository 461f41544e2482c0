#include "tools/orvexview/page_pictures.h"

#include <algorithm>

namespace orvex::tools::view {

namespace {

// Draws an area row by row; `convert` turns the ink values of a row into a line of samples.
template <typename Convert>
Picture DrawRows(const PrintedPage& page, const BlockArea& area, uint32_t scale, uint32_t channels,
                 Convert convert) {
    Reducer reducer(area.width, area.rows, channels, scale);
    RowReader reader(page);
    for (uint32_t row = 0; row < area.top + area.rows; ++row) {
        const std::span<const uint32_t> inkValues = reader.Next();
        if (row < area.top) continue;
        convert(inkValues.subspan(area.left, area.width), reducer.Line().data());
        reducer.TakeLine();
    }
    return reducer.Finish();
}

uint32_t RowsCovered(const PrintedPage& page, const PagePlacement& placement) {
    return std::max(placement.headRows, placement.headTop + page.rows);
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

void DrawTicks(Picture& picture, uint32_t headRows, uint32_t dpi, uint32_t scale) {
    for (uint32_t mm = 0;; mm += 10) {
        const uint32_t row = mm * dpi * 10 / 254;
        if (row >= headRows) return;
        const uint32_t length = mm % 50 == 0 ? kLayoutMargin / 2 : kLayoutMargin / 4;
        const uint32_t y = kLayoutMargin + row / scale;
        FillRectangle(picture, 0, y, length, 1, kTickColor);
        FillRectangle(picture, picture.width - length, y, length, 1, kTickColor);
    }
}

}  // namespace

BlockArea ImageArea(const PagePlacement& placement) {
    return {placement.imageLeft, placement.imageTop, placement.imageWidth, placement.imageRows};
}

BlockArea WholeBlock(const PrintedPage& page) {
    return {0, 0, page.rowWidth, page.rows};
}

Picture DrawComposite(const PrintFile& file, const PrintedPage& page, const BlockArea& area, uint32_t scale) {
    const InkModel model(file.dpi);
    return DrawRows(page, area, scale, 3, [&](std::span<const uint32_t> inkValues, uint8_t* out) {
        for (size_t i = 0; i < inkValues.size(); ++i) StoreColor(out + 3 * i, model.OnPaper(inkValues[i]));
    });
}

Picture DrawInk(const PrintFile& file, const PrintedPage& page, const BlockArea& area, uint32_t scale,
                int ink) {
    const InkModel model(file.dpi);
    return DrawRows(page, area, scale, 1, [&](std::span<const uint32_t> inkValues, uint8_t* out) {
        for (const uint32_t value : inkValues) *out++ = model.Gray(value, ink);
    });
}

Picture Upright(Picture picture, const PagePlacement& placement) {
    return placement.orientation == Orientation::kPortrait ? TurnClockwise(picture) : std::move(picture);
}

uint32_t LayoutLength(const PrintedPage& page, const PagePlacement& placement) {
    return std::max(page.rowWidth, RowsCovered(page, placement));
}

Picture DrawLayout(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                   uint32_t scale) {
    Picture block = DrawComposite(file, page, WholeBlock(page), scale);
    TintBlock(block, placement, scale);
    // A block that starts between two lines of the picture may need one line more.
    const uint32_t lines = (RowsCovered(page, placement) + scale - 1) / scale + 1;
    Picture picture(block.width + 2 * kLayoutMargin, lines + 2 * kLayoutMargin, 3);
    FillRectangle(picture, 0, 0, picture.width, picture.height, kPaperWhite);
    FillRectangle(picture, 0, kLayoutMargin, picture.width, placement.headRows / scale, kHeadColor);
    DrawTicks(picture, placement.headRows, file.dpi, scale);
    const uint32_t top = kLayoutMargin + placement.headTop / scale;
    PastePicture(picture, kLayoutMargin, top, block);
    OutlineRectangle(picture, kLayoutMargin + placement.imageLeft / scale - 1,
                     top + placement.imageTop / scale - 1, (placement.imageWidth + scale - 1) / scale + 2,
                     (placement.imageRows + scale - 1) / scale + 2, kImageOutline);
    return picture;
}

}  // namespace orvex::tools::view
