#include "tests/plain/page_layout.h"

#include <algorithm>
#include <cstdlib>

namespace orvex::plain {

namespace {

int32_t To32(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

int64_t HeadWidth(int16_t dpi) {
    return dpi == 600 ? 7020 : dpi == 300 ? 3510 : 1755;
}

// Alignment 0 lies at the far end, 2 at the near end, any other between.
void PlaceFill(const PageLayoutInput& input, Layout& out) {
    const int64_t fill = To32(HeadWidth(input.dpi) - out.rows);
    const int64_t half = static_cast<uint32_t>(fill) / 2;
    const int64_t offset = out.phOffsetPx;
    out.headRows = To32(HeadWidth(input.dpi));
    switch (input.alignment) {
        case 0: {
            const int64_t moved = offset < 0 ? std::min(fill, -offset) : 0;
            out.fullTop = To32(fill - moved);
            out.fullBottom = To32(moved);
            break;
        }
        case 2: {
            const int64_t moved = offset > 0 ? std::min(fill, offset) : 0;
            out.fullTop = To32(moved);
            out.fullBottom = To32(fill - moved);
            break;
        }
        default:
            out.fullTop = To32(half + offset);
            out.fullBottom = To32(fill - half + offset);
    }
}

void PlaceBlock(const PageLayoutInput& input, int64_t unit, Layout& out) {
    const int64_t offset = out.phOffsetPx;
    out.headRows = out.rows;
    if (input.alignment == 0) {
        out.topOff = To32(int64_t{input.dpi} * 117 / 10 - out.rows);
        if (offset < 0) out.topOff = std::max(To32(out.topOff + offset), 0);
    } else if (input.alignment == 2) {
        if (offset > 0) out.topOff = To32(std::min(offset, HeadWidth(input.dpi) - out.rows));
    } else {
        if (input.alignment == 1) out.pageLength = out.pageH;
        if (offset == 0) return;
        const int64_t grown = To32(std::min(std::abs(offset) * unit * 2, 86616 - int64_t{out.pageLength}));
        out.pageLength = To32(out.pageLength + grown);
        if (offset > 0) out.topOff = To32(input.dpi * grown / 7200);
    }
}

}  // namespace

Layout ComputeLayout(const PageLayoutInput& input) {
    Layout out = {};
    const int64_t unit = 7200 / input.dpi;
    const bool purges = input.purgeBar > 0;
    out.phOffsetPx = To32((int64_t{input.phHOffset} * input.dpi + 127) / -254);
    out.fullWidth = input.kwsFullWidth && (input.kws || purges);
    out.imageWidth = input.landscape ? input.bitmapWidth : input.bitmapHeight;
    out.rows = input.landscape ? input.bitmapHeight : input.bitmapWidth;
    out.purgeLead = input.purgeBar == 1 ? 1 : 0;
    out.purgeLen = purges ? To32(input.purgeDots + int64_t{input.dpi} * 10 / 254 * input.purgeGap) : 0;
    out.rowWidth = To32(int64_t{out.imageWidth} + out.purgeLen);
    out.pageW = To32(unit * out.rowWidth + 2400);
    out.pageH = To32(unit * out.rows + 2400);
    out.pageLength = 86616;
    out.fullWidth ? PlaceFill(input, out) : PlaceBlock(input, unit, out);
    return out;
}

const char* DifferentMeasure(const PageLayout& layout, const Layout& expected) {
    const struct {
        const char* name;
        int64_t have, want;
    } measures[] = {
        {"fullWidth", layout.fullWidth, expected.fullWidth},
        {"phOffsetPx", layout.phOffsetPx, expected.phOffsetPx},
        {"imageWidth", layout.imageWidth, expected.imageWidth},
        {"rowWidth", layout.rowWidth, expected.rowWidth},
        {"rows", layout.rows, expected.rows},
        {"headRows", layout.headRows, expected.headRows},
        {"purgeLen", layout.purgeLen, expected.purgeLen},
        {"purgeLead", layout.purgeLead, expected.purgeLead},
        {"pageW", layout.pageWUnits, expected.pageW},
        {"pageH", layout.pageHUnits, expected.pageH},
        {"pageLength", layout.pageLengthUnits, expected.pageLength},
        {"topOff", layout.placed.topOff, expected.topOff},
        {"fullTop", layout.placed.fullTop, expected.fullTop},
        {"fullBottom", layout.placed.fullBottom, expected.fullBottom},
    };
    for (const auto& measure : measures) {
        if (measure.have != measure.want) return measure.name;
    }
    return nullptr;
}

}  // namespace orvex::plain
