#include "driver/render/raster_loop.h"

#include <algorithm>

#include "driver/color/color_cache.h"
#include "driver/color/row_conversion.h"
#include "driver/job_state.h"
#include "driver/render/page_rows.h"
#include "driver/support/heap.h"
#include "driver/support/log.h"

namespace orvex {

void NoteDuration(DWORD startTick, uint32_t* maximum, const char* line) {
    const DWORD elapsed = GetTickCount() - startTick;
    if (elapsed <= *maximum) return;
    *maximum = elapsed;
    LogInfo(line, elapsed);
}

namespace {

constexpr uint32_t kPurgeDot600 = 0x7F7F7F7F;
constexpr uint32_t kPurgeDot = 0xFFFFFFFF;
constexpr uint32_t kFirstPixelMarker =
    2;  // the engine must never see a page that begins with an all-zero pixel

// The log lines of a page's stages; a null line's stage is not timed.
struct StageLines {
    const char* reformat;
    const char* convert;
    const char* encode;
};

StageLines LinesFor(RowOrder order) {
    const bool plain = !order.rotate180 && !order.mirrorImage;
    if (!order.landscape) {
        return {plain ? "P Reformat: %dms" : nullptr, "P Convert: %dms", "P Encode: %dms"};
    }
    if (order.rotate180) return {};
    return {plain ? "L Reformat: %dms" : nullptr, "L Convert: %dms", "L Encode: %dms"};
}

// Times one stage of a row, from construction to the end of its scope.
class StageTimer {
  public:
    StageTimer(const char* line, uint32_t* maximum)
        : line_(line), maximum_(maximum), start_(line != nullptr ? GetTickCount() : 0) {}
    ~StageTimer() {
        if (line_ != nullptr) NoteDuration(start_, maximum_, line_);
    }
    StageTimer(const StageTimer&) = delete;
    StageTimer& operator=(const StageTimer&) = delete;

  private:
    const char* line_;
    uint32_t* maximum_;
    DWORD start_;
};

PageBitmap BitmapOf(const SURFOBJ& surface) {
    const void* first = surface.lDelta >= 0 ? surface.pvBits : surface.pvScan0;
    return {static_cast<const uint8_t*>(first), surface.sizlBitmap.cx, surface.sizlBitmap.cy, surface.lDelta,
            surface.iBitmapFormat == BMF_24BPP ? 3 : 4};
}

// Whether this page of the job carries the purge dots.
bool PurgesThisPage(uint16_t everyPages) {
    return everyPages != 0 ? (g_nPage - 1) % everyPages == 0 : g_nPage == 1;
}

class RasterLoop {
  public:
    RasterLoop(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout)
        : settings_(pdev.devmode.priv),
          layout_(layout),
          order_{pdev.devmode.pub.dmOrientation == DMORIENT_LANDSCAPE, settings_.rotate180 != 0,
                 settings_.mirrorImage != 0},
          lines_(LinesFor(order_)),
          reader_(BitmapOf(surface), order_) {}

    bool Run();

  private:
    bool Allocate();
    void WritePurgeDots();
    void FillImageArea(bool withPattern);
    bool SendFillRows(int32_t count, int32_t firstNumber);
    bool SendImageRows();
    bool SendRow(int32_t number, const char* timingLine = nullptr);

    uint32_t* ImageArea() { return output_.get() + (layout_.purgeLead ? layout_.purgeLen : 0); }
    bool Is600Dpi() const { return layout_.dpi == 600; }

    const PrivateDevMode& settings_;
    const PageLayout& layout_;
    const RowOrder order_;
    const StageLines lines_;
    RowReader reader_;
    // Handed to the engine for every row. Purge dots and gap are written once and survive from row to row,
    // since conversion writes the image area only.
    HeapArray<uint32_t> output_;
};

bool RasterLoop::Allocate() {
    if (layout_.rowWidth < layout_.imageWidth) return false;  // a row longer than 32 bits can count
    output_ = AllocateZeroedArray<uint32_t>(static_cast<size_t>(std::max(layout_.rowWidth, 1)));
    return output_ && reader_;
}

void RasterLoop::WritePurgeDots() {
    if (!PurgesThisPage(static_cast<uint16_t>(settings_.purgeFreq))) return;
    // Behind the image the row's last pixel stays free, deliberately. A page without a bar has no dots.
    const int32_t first = layout_.purgeLead ? 0 : layout_.rowWidth - layout_.purgeDots - 1;
    std::fill(output_.get() + std::max(first, 0), output_.get() + std::max(first + layout_.purgeDots, 0),
              Is600Dpi() ? kPurgeDot600 : kPurgeDot);
}

void RasterLoop::FillImageArea(bool withPattern) {
    if (layout_.imageWidth <= 0) return;
    const auto count = static_cast<uint32_t>(layout_.imageWidth);
    if (withPattern) {
        FillBlankPattern(ImageArea(), count, Is600Dpi());
    } else {
        std::fill_n(ImageArea(), count, 0u);
    }
}

// Hands the output row to the engine; `timingLine` is null for a row that is not timed.
bool RasterLoop::SendRow(int32_t number, const char* timingLine) {
    uint32_t status = 0;
    {
        const StageTimer timer(timingLine, &g_stageMaxima.encode);
        status = g_engine.HPCRLIB_RasterRow(g_hJob, output_.get());
    }
    if (status == kEngineSuccess) return true;
    LogError("Error: could not send raster row %d", number);
    return false;
}

bool RasterLoop::SendFillRows(int32_t count, int32_t firstNumber) {
    for (int32_t i = 0; i < count; ++i) {
        if (!SendRow(static_cast<int32_t>(int64_t{firstNumber} + i))) return false;
    }
    return true;
}

bool RasterLoop::SendImageRows() {
    for (int32_t row = 0; row < layout_.rows; ++row) {
        const uint32_t* pixels = nullptr;
        {
            const StageTimer timer(lines_.reformat, &g_stageMaxima.reformat);
            if (layout_.imageWidth > 0) pixels = reader_.Row(row);
        }
        // A row like the one before it, whose inks are settled, prints what is still in the output row; only
        // the first row's may have been changed since.
        if (row <= 1 || !reader_.Repeats() || !InksAreSettled()) {
            const StageTimer timer(lines_.convert, &g_stageMaxima.convert);
            ConvertRow(ImageArea(), pixels, static_cast<uint32_t>(std::max(layout_.imageWidth, 0)), 1,
                       settings_.kws, Is600Dpi(), static_cast<uint32_t>(settings_.colorMode));
        }
        if (row == 0 && output_[0] == 0) output_[0] = kFirstPixelMarker;
        const int64_t number = int64_t{row} + layout_.placed.fullTop;
        if (!SendRow(static_cast<int32_t>(number), lines_.encode)) return false;
    }
    return true;
}

bool RasterLoop::Run() {
    const DWORD start = GetTickCount();
    LogInfo("Start render loop %d pixels rot=%d mir=%d luti=%d [%s]",
            int64_t{layout_.rows} * layout_.imageWidth, settings_.rotate180, settings_.mirrorImage,
            g_nProfileKind, g_szJobName);
    const bool allocated = Allocate();
    const int64_t bytes = int64_t{layout_.rowWidth} * 4;
    LogInfo("ln32: %d %d", bytes, bytes);
    NoteDuration(start, &g_stageMaxima.setup, "setup: %dms");
    if (!allocated) {
        LogError("Error: could not allocate rows of %d pixels", layout_.rowWidth);
        return false;
    }

    WritePurgeDots();
    if (layout_.fullWidth) {
        if (settings_.kws != 0) FillImageArea(true);
        if (!SendFillRows(layout_.placed.fullTop, 0)) return false;
    }
    if (!SendImageRows()) return false;
    if (layout_.fullWidth) {
        FillImageArea(settings_.kws != 0);
        const int64_t firstBottom = int64_t{layout_.rows} + layout_.placed.fullTop;
        if (!SendFillRows(layout_.placed.fullBottom, static_cast<int32_t>(firstBottom))) return false;
    }
    const DWORD elapsed = GetTickCount() - start;
    LogTrace("Finished main rendering loop: %dms", elapsed);
    return true;
}

}  // namespace

bool SendRasterRows(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout) {
    return RasterLoop(pdev, surface, layout).Run();
}

}  // namespace orvex
