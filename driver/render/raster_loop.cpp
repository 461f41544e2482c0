#include "driver/render/raster_loop.h"

#include <algorithm>

#include "driver/color/color_cache.h"
#include "driver/color/row_conversion.h"

namespace orvex {

namespace {

constexpr InkValue kPurgeDot600 = 0x7F7F7F7F;
constexpr InkValue kPurgeDot = 0xFFFFFFFF;
constexpr InkValue kFirstPixelMarker = 2;  // the engine must never see a page that begins with a zero pixel

// Allocates a row of zeros. Returns null for a row longer than 32 bits can count.
HeapArray<InkValue> AllocateRow(const PageLayout& layout) {
    if (layout.rowWidth < layout.imageWidth) return nullptr;
    return AllocateZeroedArray<InkValue>(static_cast<size_t>(std::max(layout.rowWidth, 1)));
}

}  // namespace

RasterLoop::RasterLoop(const PageBitmap& bitmap, const PageLayout& layout, const RasterSettings& settings)
    : layout_(layout), settings_(settings), reader_(bitmap, settings.order), output_(AllocateRow(layout)) {}

void RasterLoop::WritePurgeDots() {
    // After the image the row's last pixel stays free, deliberately. A page without a bar has no dots.
    const int32_t first = layout_.purgeLead ? 0 : layout_.rowWidth - layout_.purgeDots - 1;
    std::fill(output_.get() + std::max(first, 0), output_.get() + std::max(first + layout_.purgeDots, 0),
              layout_.Is600Dpi() ? kPurgeDot600 : kPurgeDot);
}

void RasterLoop::FillImageArea(bool withPattern) {
    const auto count = static_cast<uint32_t>(layout_.imageWidth);
    if (withPattern) {
        FillBlankPattern(ImageArea(), count, layout_.Is600Dpi());
    } else {
        std::fill_n(ImageArea(), count, 0u);
    }
}

bool RasterLoop::SendFillRows(int32_t count, int64_t firstNumber, RowSink& sink) {
    for (int32_t i = 0; i < count; ++i) {
        if (!sink.Take(static_cast<int32_t>(firstNumber + i), output_.get())) return false;
    }
    return true;
}

bool RasterLoop::SendImageRows(RowSink& sink) {
    const auto width = static_cast<uint32_t>(layout_.imageWidth);
    for (int32_t row = 0; row < layout_.rows; ++row) {
        sink.Begin(RasterStage::kReformat);
        const uint32_t* pixels = width > 0 ? reader_.Row(row) : nullptr;
        sink.End(RasterStage::kReformat);
        // The output row still has the inks of a row like this one, if these are settled; only the first
        // row's may have been changed since.
        if (row <= 1 || !reader_.Repeats() || !InksAreSettled()) {
            sink.Begin(RasterStage::kConvert);
            ConvertRow(ImageArea(), pixels, width, 1, settings_.kws, layout_.Is600Dpi(), settings_.colorMode);
            sink.End(RasterStage::kConvert);
        }
        if (row == 0 && output_[0] == 0) output_[0] = kFirstPixelMarker;
        sink.Begin(RasterStage::kEncode);
        const int64_t number = int64_t{row} + layout_.placed.fullTop;
        const bool taken = sink.Take(static_cast<int32_t>(number), output_.get());
        sink.End(RasterStage::kEncode);
        if (!taken) return false;
    }
    return true;
}

bool RasterLoop::Send(RowSink& sink) {
    if (settings_.purges) WritePurgeDots();
    if (layout_.fullWidth) {
        if (settings_.kws) FillImageArea(true);
        if (!SendFillRows(layout_.placed.fullTop, 0, sink)) return false;
    }
    if (!SendImageRows(sink)) return false;
    if (!layout_.fullWidth) return true;
    FillImageArea(settings_.kws);
    return SendFillRows(layout_.placed.fullBottom, int64_t{layout_.rows} + layout_.placed.fullTop, sink);
}

}  // namespace orvex
