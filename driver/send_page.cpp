// DrvSendPage: lays a finished page under the print head and hands its rows to the print engine.

#include "driver/device_capabilities.h"
#include "driver/job_state.h"
#include "driver/render/raster_loop.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"
#include "driver/support/text.h"
#include "driver/thumbnail.h"

namespace orvex {

namespace {

constexpr signed char kHpres600 = 0, kHpresOther = -1;  // resolution codes of the job header

void BeginFirstPage(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout) {
    const PrivateDevMode& settings = pdev.devmode.priv;
    ResetStageMaxima();
    LogInfo("surfobj dpi:%d sizlBitmap:%dx%d cjBits:%d lDelta:%d bform:%d", layout.dpi, surface.sizlBitmap.cx,
            surface.sizlBitmap.cy, surface.cjBits, surface.lDelta, surface.iBitmapFormat);
    LogInfo(
        "dmOrient:%d kws:%d kwsfull:%d fw:%d, purgeBar:%d  purgeGap:%d  purgeDots:%d  overspray:%d "
        "phoffset:%d",
        pdev.devmode.pub.dmOrientation, settings.kws, settings.kws_fullwidth, layout.fullWidth,
        settings.purgeBar, settings.purgeGap, settings.purgeDots, settings.overspray, layout.phOffsetPx);
}

void LogExtents(const PDEV& pdev, const PageLayout& layout) {
    if (layout.fullWidth) {
        LogInfo("Fullphwidth:  %d %d %d", layout.halves.fullTop, layout.rows, layout.halves.fullBottom);
    }
    if (pdev.devmode.priv.purgeBar > 0) {
        LogInfo("purgebar: lead:%d %d %d %d", layout.purgeLead, layout.purgeDots, layout.purgeLen,
                layout.rowWidth);
    }
    LogInfo("PageStart: page:%lux%lu  image:%lux%lu  align=%d", layout.pageWUnits, layout.pageHUnits,
            layout.imageWUnits, layout.imageHUnits, pdev.devmode.priv.alignment);
}

void LogPrintHeadOffset(const PageLayout& layout) {
    if (layout.phOffsetPx == 0) return;
    LogInfo("phOffset:%d topOff:%d fullTopFillPx:%d fullBottomFillPx:%d", layout.phOffsetPx,
            layout.aligned.topOff, layout.aligned.fullTop, layout.aligned.fullBottom);
    const int32_t offset = layout.phOffsetPx, amount = layout.offsetAmount, topOff = layout.placed.topOff;
    switch (layout.offsetEffect) {
        case OffsetEffect::kNone:
            return;
        case OffsetEffect::kRightAligned:
            return LogInfo("phOffset: ar=%d topOff=%d", offset, topOff);
        case OffsetEffect::kLeftAligned:
            return LogInfo("phOffset: al=%d topOff=%d", offset, topOff);
        case OffsetEffect::kCentered:
            return LogInfo("phOffset: ph=%d c=%d", amount, offset);
        case OffsetEffect::kFullRightAligned:
            return LogInfo("phOffset: fw ar=%d", amount);
        case OffsetEffect::kFullLeftAligned:
            return LogInfo("phOffset: fw al=%d", amount);
        case OffsetEffect::kFullCentered:
            return LogInfo("phOffset: fw c=%d", amount);
    }
}

// Returns whether a side is negative. No graphics engine makes such a bitmap, and nothing can be made of it.
bool HasNegativeSide(const SURFOBJ& surface) {
    return surface.sizlBitmap.cx < 0 || surface.sizlBitmap.cy < 0;
}

void MakeThumbnail(const SURFOBJ& surface) {
    if (HasNegativeSide(surface)) return;
    if (!LookupFlag("[Driver]", "Add_Thumb=")) return;
    if (surface.iBitmapFormat == BMF_24BPP) return;  // the thumbnail reads pixels of 32 bits
    BuildPageThumbnail(static_cast<const uint32_t*>(surface.pvBits), surface.sizlBitmap.cx,
                       surface.sizlBitmap.cy, &g_pThumbnail, &g_cbThumbnail);
}

void DiscardThumbnail() {
    if (g_pThumbnail == nullptr) return;
    LogInfo("Clearing thumbnail as not used!");
    free(g_pThumbnail);
    g_pThumbnail = nullptr;
}

// Settles the resolution code of the job header, or has it patched into the output of a later page.
void RequestResolution(bool is600) {
    if (g_cHpres == kHpresUnset) {
        g_cHpres = is600 ? kHpres600 : kHpresOther;
        return;
    }
    if (g_resolutionSwitch.queued) LogError("Error: page %d res missed!!!!!!!!!!!!!!!!!!!", g_nPage);
    const std::string_view command = is600 ? kResolutionCommand600Dpi : kResolutionCommandOther;
    g_resolutionSwitch = {command.data(), static_cast<uint32_t>(command.size()), true, true};
}

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
    // Deliberate: rows neither rotated nor mirrored have all stages timed, rotated landscape rows none.
    explicit EngineRows(RowOrder order) {
        if (order.landscape && order.rotate180) return;
        if (!order.rotate180 && !order.mirrorImage)
            Of(RasterStage::kReformat).line = order.landscape ? "L Reformat: %dms" : "P Reformat: %dms";
        Of(RasterStage::kConvert).line = order.landscape ? "L Convert: %dms" : "P Convert: %dms";
        Of(RasterStage::kEncode).line = order.landscape ? "L Encode: %dms" : "P Encode: %dms";
    }

    void Begin(RasterStage stage) override {
        if (Of(stage).line != nullptr) start_ = GetTickCount();
    }
    void End(RasterStage stage) override {
        const Timing& timing = Of(stage);
        if (timing.line != nullptr) NoteDuration(start_, timing.maximum, timing.line);
    }
    bool Take(int32_t number, const InkValue* row) override {
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
    Timing& Of(RasterStage stage) { return timings_[static_cast<size_t>(stage)]; }

    Timing timings_[3] = {{&g_stageMaxima.reformat}, {&g_stageMaxima.convert}, {&g_stageMaxima.encode}};
    DWORD start_ = 0;  // of the stage that was begun last
    int32_t number_ = 0;
};

PageBitmap BitmapOf(const SURFOBJ& surface) {
    const void* first = surface.lDelta >= 0 ? surface.pvBits : surface.pvScan0;
    return {static_cast<const uint8_t*>(first), surface.sizlBitmap.cx, surface.sizlBitmap.cy, surface.lDelta,
            surface.iBitmapFormat == BMF_24BPP ? 3 : 4};
}

RasterSettings SettingsOf(const DeviceMode& mode) {
    const PrivateDevMode& priv = mode.priv;
    const auto everyPages = static_cast<uint16_t>(priv.purgeFreq);
    return {{mode.pub.dmOrientation == DMORIENT_LANDSCAPE, priv.rotate180 != 0, priv.mirrorImage != 0},
            priv.kws != 0,
            static_cast<uint32_t>(priv.colorMode),
            everyPages != 0 ? (g_nPage - 1) % everyPages == 0 : g_nPage == 1};
}

// Sends the rows of an opened raster block and logs how long their stages took. Returns false, and logs it,
// when the engine refuses a row or memory runs out; no further row is sent then.
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

// Returns whether a call of the engine succeeded. A refusal is logged and ends the page.
bool Succeeded(uint32_t status, const char* refusal) {
    if (status == kEngineSuccess) return true;
    LogError(refusal);
    return false;
}

void SendToEngine(const PDEV& pdev, const SURFOBJ& surface, const PageLayout& layout) {
    // The page is refused before the engine opens it, so that the engine takes the next one.
    if (HasNegativeSide(surface)) {
        LogError("Error: could not send a page of %dx%d pixels", surface.sizlBitmap.cx,
                 surface.sizlBitmap.cy);
        return;
    }
    const auto topOff = static_cast<uint32_t>(layout.placed.topOff);
    const auto rowWidth = static_cast<uint32_t>(layout.rowWidth);
    const auto headRows = static_cast<uint32_t>(layout.headRows);
    if (!Succeeded(g_engine.HPCRLIB_PageStart(g_hJob, static_cast<uint32_t>(layout.pageWUnits),
                                              static_cast<uint32_t>(layout.pageLengthUnits)),
                   "Error: could not start a page")) {
        return;
    }
    LogInfo("RasterBlockStart: 0, %lu, %lu, %lu", topOff, rowWidth, headRows);
    if (!Succeeded(g_engine.HPCRLIB_RasterBlockStart(g_hJob, 0, topOff, rowWidth, headRows),
                   "Error: could not start a raster block")) {
        return;
    }
    if (!SendRasterRows(pdev, surface, layout)) return;
    if (!Succeeded(g_engine.HPCRLIB_RasterBlockEnd(g_hJob), "Error: could not end a raster block")) return;
    if (!Succeeded(g_engine.HPCRLIB_PageEnd(g_hJob), "Error: could not end the page")) return;
    LogInfo("Finished sending page");
}

}  // namespace

// A refusal by the engine is logged, not reported: the hook still returns TRUE and counts the page.
extern "C" BOOL APIENTRY DrvSendPage(SURFOBJ* pso) {
    const TraceScope trace("DrvSendPage");
    const DWORD start = GetTickCount();
    PDEV* pdev = RequireInstance(pso);
    if (pdev == nullptr) return trace.Bool(FALSE);

    AskForDriverName(*pdev);
    const PageLayout layout = ComputePageLayout(
        LayoutInput(pdev->devmode, GetDeviceResolution(pdev), pso->sizlBitmap.cx, pso->sizlBitmap.cy));
    const bool firstPage = g_nPage == 1;
    if (firstPage) BeginFirstPage(*pdev, *pso, layout);
    LogExtents(*pdev, layout);
    if (firstPage) MakeThumbnail(*pso);
    LogPrintHeadOffset(layout);
    RequestResolution(layout.Is600Dpi());
    // After a job that failed to start, no library is bound, and there is no engine to send the page to.
    if (g_hHpcrlib != nullptr) SendToEngine(*pdev, *pso, layout);

    ++pdev->pageCount;
    DiscardThumbnail();
    LogInfo("Page Time elapsed : %ldms\n", GetTickCount() - start);
    return trace.Bool(TRUE);
}

}  // namespace orvex
