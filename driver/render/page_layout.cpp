#include "driver/render/page_layout.h"

#include <algorithm>
#include <cstdlib>

#include "driver/support/lengths.h"

namespace orvex {

namespace {

constexpr int32_t kUnitsPerInch = 7200;
constexpr int32_t kPageMarginUnits = 2400;  // a third of an inch
constexpr int32_t kFullPageUnits = 86616;   // 12.03 inches

// Wraps a sum or product, formed in 64 bits, to 32.
int32_t Wrap(int64_t value) {
    return static_cast<int32_t>(value);
}

int32_t PrintHeadOffsetPx(int16_t tenthsMm, int16_t dpi) {
    return (tenthsMm * dpi + kTenthsMmPerInch / 2) / -kTenthsMmPerInch;
}

void AddPurgeBar(const PageLayoutInput& input, PageLayout& layout) {
    layout.rowWidth = layout.imageWidth;
    if (input.purgeBar <= 0) return;
    const int32_t pixelsPerMm = input.dpi * kTenthsMmPerMm / kTenthsMmPerInch;  // whole pixels only
    layout.purgeLead = input.purgeBar == 1 ? 1 : 0;
    layout.purgeDots = input.purgeDots;
    layout.purgeLen = input.purgeDots + pixelsPerMm * input.purgeGap;
    layout.rowWidth = Wrap(int64_t{layout.imageWidth} + layout.purgeLen);
}

void FillHeadWidth(PageLayout& layout) {
    layout.headRows = layout.rows;
    if (!layout.fullWidth) return;
    layout.headRows = HeadWidthPx(layout.dpi);
    const int32_t fill = Wrap(int64_t{layout.headRows} - layout.rows);
    // The halving is unsigned, so more rows than the head is wide give a huge half; nothing clamps it.
    layout.halves.fullTop = static_cast<int32_t>(static_cast<uint32_t>(fill) / 2);
    layout.halves.fullBottom = Wrap(int64_t{fill} - layout.halves.fullTop);
}

void MeasureInUnits(PageLayout& layout) {
    layout.unit = kUnitsPerInch / layout.dpi;
    layout.imageWUnits = Wrap(int64_t{layout.unit} * layout.rowWidth);
    layout.imageHUnits = Wrap(int64_t{layout.unit} * layout.rows);
    layout.pageWUnits = Wrap(int64_t{layout.imageWUnits} + kPageMarginUnits);
    layout.pageHUnits = Wrap(int64_t{layout.imageHUnits} + kPageMarginUnits);
}

void Align(int16_t alignment, PageLayout& layout) {
    layout.aligned = layout.halves;
    layout.pageLengthUnits = kFullPageUnits;
    Placement& place = layout.aligned;
    if (!layout.fullWidth) {
        if (alignment == kAlignCenter) layout.pageLengthUnits = layout.pageHUnits;
        if (alignment == kAlignRight) place.topOff = Wrap(int64_t{layout.dpi} * 117 / 10 - layout.rows);
    } else if (alignment == kAlignLeft) {
        place.fullBottom = Wrap(int64_t{place.fullBottom} + place.fullTop);
        place.fullTop = 0;
    } else if (alignment == kAlignRight) {
        place.fullTop = Wrap(int64_t{place.fullTop} + place.fullBottom);
        place.fullBottom = 0;
    }
}

void ApplyOffsetToFill(int16_t alignment, PageLayout& layout) {
    const int32_t offset = layout.phOffsetPx;
    Placement& place = layout.placed;
    if (alignment == kAlignRight) {
        const int32_t moved = std::min(place.fullTop, -offset);
        place.fullTop = Wrap(int64_t{place.fullTop} - moved);
        place.fullBottom = Wrap(int64_t{place.fullBottom} + moved);
        layout.offsetEffect = OffsetEffect::kFullRightAligned;
        layout.offsetAmount = moved;
    } else if (alignment == kAlignLeft) {
        const int32_t moved = std::min(place.fullBottom, offset);
        place.fullTop = Wrap(int64_t{place.fullTop} + moved);
        place.fullBottom = Wrap(int64_t{place.fullBottom} - moved);
        layout.offsetEffect = OffsetEffect::kFullLeftAligned;
        layout.offsetAmount = moved;
    } else {
        // Deliberate: both ends grow by the offset, so the block's length changes by twice that.
        place.fullTop = Wrap(int64_t{place.fullTop} + offset);
        place.fullBottom = Wrap(int64_t{place.fullBottom} + offset);
        layout.offsetEffect = OffsetEffect::kFullCentered;
        layout.offsetAmount = offset;
    }
}

void ApplyOffsetToBlock(int16_t alignment, PageLayout& layout) {
    const int32_t offset = layout.phOffsetPx;
    Placement& place = layout.placed;
    if (alignment == kAlignRight) {
        place.topOff = std::max(Wrap(int64_t{place.topOff} + offset), 0);
        layout.offsetEffect = OffsetEffect::kRightAligned;
    } else if (alignment == kAlignLeft) {
        place.topOff = static_cast<int32_t>(std::min<int64_t>(
            int64_t{place.topOff} + offset, int64_t{HeadWidthPx(layout.dpi)} - layout.rows));
        layout.offsetEffect = OffsetEffect::kLeftAligned;
    } else {
        // Deliberate: an offset in either direction makes the engine's page longer by twice its size, but
        // only a positive one moves the image.
        const int32_t magnitude = std::abs(offset);
        const int32_t grown = static_cast<int32_t>(std::min<int64_t>(
            int64_t{magnitude} * layout.unit * 2, int64_t{kFullPageUnits} - layout.pageLengthUnits));
        layout.pageLengthUnits = Wrap(int64_t{layout.pageLengthUnits} + grown);
        if (offset > 0) place.topOff = Wrap(place.topOff + int64_t{layout.dpi} * grown / kUnitsPerInch);
        layout.offsetEffect = OffsetEffect::kCentered;
        layout.offsetAmount = grown;
    }
}

}  // namespace

int32_t HeadWidthPx(int16_t dpi) {
    return dpi == 600 ? 7020 : dpi == 300 ? 3510 : 1755;
}

PageLayout ComputePageLayout(const PageLayoutInput& input) {
    PageLayout layout = {};
    layout.dpi = input.dpi;
    layout.phOffsetPx = PrintHeadOffsetPx(input.phHOffset, input.dpi);
    layout.fullWidth = input.kwsFullWidth && (input.kws || input.purgeBar > 0);
    layout.imageWidth = input.landscape ? input.bitmapWidth : input.bitmapHeight;
    layout.rows = input.landscape ? input.bitmapHeight : input.bitmapWidth;
    FillHeadWidth(layout);
    AddPurgeBar(input, layout);
    MeasureInUnits(layout);
    Align(input.alignment, layout);
    layout.placed = layout.aligned;
    // A page at an end of the print head can only be moved away from it.
    const bool movable = input.alignment == kAlignRight  ? layout.phOffsetPx < 0
                         : input.alignment == kAlignLeft ? layout.phOffsetPx > 0
                                                         : layout.phOffsetPx != 0;
    if (movable) (layout.fullWidth ? ApplyOffsetToFill : ApplyOffsetToBlock)(input.alignment, layout);
    return layout;
}

}  // namespace orvex
