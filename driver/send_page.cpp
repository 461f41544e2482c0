// DrvSendPage: takes a finished page from the graphics engine, lays it under the print head and hands its
// rows to the print engine.

#include "driver/device_capabilities.h"
#include "driver/job_state.h"
#include "driver/raster_output.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"
#include "driver/support/text.h"
#include "driver/thumbnail.h"

namespace orvex {

namespace {

// The resolution code in the job header.
constexpr signed char kHpres600 = 0;
constexpr signed char kHpresOther = -1;

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

// Returns whether a side of the bitmap is negative. No graphics engine makes such a bitmap, and neither rows
// nor a thumbnail can be made of it.
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

// Settles the resolution code of the job header on the job's first page, and has it patched into the engine's
// output on a later one.
void RequestResolution(bool is600) {
    if (g_cHpres == kHpresUnset) {
        g_cHpres = is600 ? kHpres600 : kHpresOther;
        return;
    }
    if (g_resolutionSwitch.queued) LogError("Error: page %d res missed!!!!!!!!!!!!!!!!!!!", g_nPage);
    const std::string_view command = is600 ? kResolutionCommand600Dpi : kResolutionCommandOther;
    g_resolutionSwitch = {command.data(), static_cast<uint32_t>(command.size()), true, true};
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

// Sends a page. A refusal by the engine is logged, not reported: the hook still returns TRUE and counts the
// page.
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
