#include "driver/raster_output.h"

#include "driver/job_state.h"
#include "driver/render/raster_loop.h"
#include "driver/support/log.h"

namespace orvex {

namespace {

// Logs a duration since `startTick` when it is longer than every earlier one of its kind in the job.
void NoteDuration(DWORD startTick, uint32_t* maximum, const char* line) {
    const DWORD elapsed = GetTickCount() - startTick;
    if (elapsed <= *maximum) return;
    *maximum = elapsed;
    LogInfo(line, elapsed);
}

// Hands rows to the print engine and times their stages.
class EngineRows final : public RowSink {
  public:
    // Deliberate: rows that are neither rotated nor mirrored have all stages timed, rotated landscape rows
    // none.
    explicit EngineRows(RowOrder order) {
        const bool plain = !order.rotate180 && !order.mirrorImage;
        if (order.landscape && order.rotate180) return;
        if (plain) reformat_.line = order.landscape ? "L Reformat: %dms" : "P Reformat: %dms";
        convert_.line = order.landscape ? "L Convert: %dms" : "P Convert: %dms";
        encode_.line = order.landscape ? "L Encode: %dms" : "P Encode: %dms";
    }

    void Begin(RasterStage stage) override {
        if (TimingOf(stage).line != nullptr) start_ = GetTickCount();
    }
    void End(RasterStage stage) override {
        const Timing& timing = TimingOf(stage);
        if (timing.line != nullptr) NoteDuration(start_, timing.maximum, timing.line);
    }
    bool Take(int32_t number, const uint32_t* row) override {
        number_ = number;
        return g_engine.HPCRLIB_RasterRow(g_hJob, row) == kEngineSuccess;
    }

    // The number of the row that was taken last.
    int32_t Number() const { return number_; }

  private:
    struct Timing {
        uint32_t* maximum;
        const char* line = nullptr;  // null for a stage that is not timed
    };
    const Timing& TimingOf(RasterStage stage) const {
        switch (stage) {
            case RasterStage::kReformat:
                return reformat_;
            case RasterStage::kConvert:
                return convert_;
            default:
                return encode_;
        }
    }

    Timing reformat_ = {&g_stageMaxima.reformat};
    Timing convert_ = {&g_stageMaxima.convert};
    Timing encode_ = {&g_stageMaxima.encode};
    DWORD start_ = 0;  // of the stage that was begun last
    int32_t number_ = 0;
};

PageBitmap BitmapOf(const SURFOBJ& surface) {
    const void* first = surface.lDelta >= 0 ? surface.pvBits : surface.pvScan0;
    return {static_cast<const uint8_t*>(first), surface.sizlBitmap.cx, surface.sizlBitmap.cy, surface.lDelta,
            surface.iBitmapFormat == BMF_24BPP ? 3 : 4};
}

// Returns whether this page of the job carries the purge dots.
bool PurgesThisPage(uint16_t everyPages) {
    return everyPages != 0 ? (g_nPage - 1) % everyPages == 0 : g_nPage == 1;
}

RasterSettings SettingsOf(const DeviceMode& mode) {
    const PrivateDevMode& priv = mode.priv;
    return {{mode.pub.dmOrientation == DMORIENT_LANDSCAPE, priv.rotate180 != 0, priv.mirrorImage != 0},
            priv.kws != 0,
            static_cast<uint32_t>(priv.colorMode),
            PurgesThisPage(static_cast<uint16_t>(priv.purgeFreq))};
}

}  // namespace

bool SendRasterRows(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout) {
    const DWORD start = GetTickCount();
    LogInfo("Start render loop %d pixels rot=%d mir=%d luti=%d [%s]",
            int64_t{layout.rows} * layout.imageWidth, pdev.devmode.priv.rotate180,
            pdev.devmode.priv.mirrorImage, g_nProfileKind, g_szJobName);
    const RasterSettings settings = SettingsOf(pdev.devmode);
    RasterLoop loop(BitmapOf(surface), layout, settings);
    const int64_t bytes = int64_t{layout.rowWidth} * 4;
    LogInfo("ln32: %d %d", bytes, bytes);
    NoteDuration(start, &g_stageMaxima.setup, "setup: %dms");
    if (!loop) {
        LogError("Error: could not allocate rows of %d pixels", layout.rowWidth);
        return false;
    }
    EngineRows rows(settings.order);
    if (!loop.Send(rows)) {
        LogError("Error: could not send raster row %d", rows.Number());
        return false;
    }
    const DWORD elapsed = GetTickCount() - start;
    LogTrace("Finished main rendering loop: %dms", elapsed);
    return true;
}

}  // namespace orvex
