#include "tools/orvexview/page_pictures.h"

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
        for (const uint32_t value : inkValues) {
            const Rgb color = model.OnPaper(value);
            *out++ = color.red;
            *out++ = color.green;
            *out++ = color.blue;
        }
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

}  // namespace orvex::tools::view
