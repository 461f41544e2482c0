#include "driver/render/raster_loop.h"

#include <algorithm>

#include "driver/color/color_cache.h"
#include "driver/color/row_conversion.h"

namespace orvex {

namespace {

constexpr uint32_t kPurgeDot600 = 0x7F7F7F7F;
constexpr uint32_t kPurgeDot = 0xFFFFFFFF;
constexpr uint32_t kFirstPixelMarker = 2;  // the engine must never see a page that begins with a zero pixel

// Reports one stage of a row, from construction to the end of its scope.
class StageScope {
  public:
    StageScope(RowSink& sink, RasterStage stage) : sink_(sink), stage_(stage) { sink_.Begin(stage_); }
    ~StageScope() { sink_.End(stage_); }
    StageScope(const StageScope&) = delete;
    StageScope& operator=(const StageScope&) = delete;

  private:
    RowSink& sink_;
    RasterStage stage_;
};

// Allocates a row of zeros. Returns null for a row longer than 32 bits can count.
HeapArray<uint32_t> AllocateRow(const PageLayout& layout) {
    if (layout.rowWidth < layout.imageWidth) return nullptr;
    return AllocateZeroedArray<uint32_t>(static_cast<size_t>(std::max(layout.rowWidth, 1)));
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
    if (layout_.imageWidth <= 0) return;
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

void RasterLoop::ConvertImageRow(const uint32_t* pixels) {
    ConvertRow(ImageArea(), pixels, static_cast<uint32_t>(std::max(layout_.imageWidth, 0)), 1, settings_.kws,
               layout_.Is600Dpi(), settings_.colorMode);
}

bool RasterLoop::SendImageRows(RowSink& sink) {
    for (int32_t row = 0; row < layout_.rows; ++row) {
        const uint32_t* pixels = nullptr;
        {
            const StageScope stage(sink, RasterStage::kReformat);
            if (layout_.imageWidth > 0) pixels = reader_.Row(row);
        }
        // The output row still has the inks of a row like this one, if these are settled; only the first
        // row's may have been changed since.
        if (row <= 1 || !reader_.Repeats() || !InksAreSettled()) {
            const StageScope stage(sink, RasterStage::kConvert);
            ConvertImageRow(pixels);
        }
        if (row == 0 && output_[0] == 0) output_[0] = kFirstPixelMarker;
        const StageScope stage(sink, RasterStage::kEncode);
        const int64_t number = int64_t{row} + layout_.placed.fullTop;
        if (!sink.Take(static_cast<int32_t>(number), output_.get())) return false;
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
