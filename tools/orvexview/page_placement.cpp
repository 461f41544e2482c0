#include "tools/orvexview/page_placement.h"

#include <algorithm>

#include "engine/print_stream.h"

namespace orvex::tools::view {

using namespace print_stream;

namespace {

// The job settings that place an image. A missing setting counts as 0.
struct Settings {
    explicit Settings(const PjlHeader& header) {
        const auto number = [&](std::string_view name) { return header.FindNumber(name).value_or(0); };
        labelWidth = number("ORIGX");
        labelHeight = number("ORIGY");
        alignment = number("ALIGN");
        headOffsetTenthsMm = number("PHOFFSET");
        purgeBar = std::max(number("PURGEBAR"), 0);
        purgeDots = std::max(number("PURGEDOTS"), 0);
        purgeGapMm = std::max(number("PURGEGAP"), 0);
        fullWidth = number("FULLWIDTH") != 0 && (number("KWS") != 0 || purgeBar > 0);
    }

    int32_t labelWidth;   // pixels
    int32_t labelHeight;  // pixels
    int32_t alignment;    // 0 = right, 1 = center, 2 = left
    int32_t headOffsetTenthsMm;
    int32_t purgeBar;  // 0 = none, 1 = before the image, 2 = after it
    int32_t purgeDots;
    int32_t purgeGapMm;
    bool fullWidth;  // whether fill rows make every page as wide as the head
};

enum Alignment { kRight = 0, kLeft = 2 };

struct Fill {
    int64_t top = 0;
    int64_t bottom = 0;
};

// Returns the fill rows around an image of `rows` rows. A print-head offset moves rows from one side to the
// other; on a centered label it changes both sides by the same number.
Fill FillAround(const Settings& settings, int64_t rows, const PrintedPage& page, int64_t dpi) {
    if (!settings.fullWidth) return {};
    const int64_t fill = std::max<int64_t>(page.announcedRows - rows, 0);
    const int64_t offset = (settings.headOffsetTenthsMm * dpi + 127) / -254;
    if (settings.alignment == kRight) {
        const int64_t moved = offset < 0 ? std::min(fill, -offset) : 0;
        return {fill - moved, moved};
    }
    if (settings.alignment == kLeft) {
        const int64_t moved = offset > 0 ? std::min(fill, offset) : 0;
        return {moved, fill - moved};
    }
    return {std::max<int64_t>(fill / 2 + offset, 0), std::max<int64_t>(fill - fill / 2 + offset, 0)};
}

void PlacePurgeBar(const Settings& settings, const PrintedPage& page, int64_t dpi, PagePlacement& placement) {
    placement.imageWidth = page.rowWidth;
    if (settings.purgeBar == 0) return;
    const int64_t wholePixelsPerMm = dpi * 10 / 254;
    const int64_t width = settings.purgeDots + wholePixelsPerMm * settings.purgeGapMm;
    if (width >= page.rowWidth) return;
    placement.purgeWidth = static_cast<uint32_t>(width);
    placement.imageWidth -= placement.purgeWidth;
    if (settings.purgeBar == 1) placement.imageLeft = placement.purgeWidth;
}

// Accepts the orientation if the label, sent that way, results in exactly this block.
bool Explains(Orientation orientation, const Settings& settings, const PrintedPage& page, int64_t dpi,
              PagePlacement& placement) {
    const bool portrait = orientation == Orientation::kPortrait;
    const int64_t along = portrait ? settings.labelHeight : settings.labelWidth;
    const int64_t rows = portrait ? settings.labelWidth : settings.labelHeight;
    const Fill fill = FillAround(settings, rows, page, dpi);
    if (along != placement.imageWidth || rows < 1 || fill.top + rows + fill.bottom != page.rows) return false;
    placement.explained = true;
    placement.orientation = orientation;
    placement.imageTop = static_cast<uint32_t>(fill.top);
    placement.imageRows = static_cast<uint32_t>(rows);
    placement.fillBottom = static_cast<uint32_t>(fill.bottom);
    return true;
}

}  // namespace

PagePlacement PlacePage(const PrintFile& file, const PrintedPage& page, std::optional<Orientation> asked) {
    const Settings settings(file.header);
    PagePlacement placement;
    placement.headRows = HeadRows(file.resolutionMode);
    const uint32_t aside = (kFullPageLength - std::min(page.length, kFullPageLength)) / 2;
    placement.headTop = aside / UnitsPerPixel(file.resolutionMode) + page.top;
    placement.imageRows = page.rows;
    PlacePurgeBar(settings, page, file.dpi, placement);
    // A square label fits both ways, so the driver's default, portrait, is tried first.
    for (const Orientation orientation : {Orientation::kPortrait, Orientation::kLandscape}) {
        if (Explains(orientation, settings, page, file.dpi, placement)) break;
    }
    if (asked) placement.orientation = *asked;
    return placement;
}

}  // namespace orvex::tools::view
