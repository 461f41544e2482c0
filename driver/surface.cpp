// The hooks of the page bitmap. The graphics engine manages one 32-bpp bitmap, as large as the page, for each
// device instance, and nobody else draws into it.

#include "driver/device_capabilities.h"
#include "driver/device_instance.h"
#include "driver/support/log.h"

namespace orvex {

extern "C" HSURF APIENTRY DrvEnableSurface(DHPDEV dhpdev) {
    const TraceScope trace("DrvEnableSurface");
    const auto fail = [&trace] { return reinterpret_cast<HSURF>(trace.Pointer<void>(nullptr)); };
    PDEV* pdev = RequireInstance(dhpdev);
    if (pdev == nullptr) return fail();

    const int16_t dpi = GetDeviceResolution(pdev);
    const SIZEL size = {static_cast<LONG>(PixelCount(dpi, pdev->dwPageWidth)),
                        static_cast<LONG>(PixelCount(dpi, pdev->dwPageLength))};
    LogInfo("Surface %dx%d at %ddpi 32BPP", size.cx, size.cy, dpi);
    const auto surface =
        reinterpret_cast<HSURF>(EngCreateBitmap(size, size.cx * 4, BMF_32BPP, BMF_TOPDOWN, nullptr));
    if (surface == nullptr) {
        LogError("Could not create surface.");
        return fail();
    }
    if (!EngAssociateSurface(surface, pdev->hdev, 0)) {
        EngDeleteSurface(surface);
        return fail();
    }
    pdev->hSurface = surface;
    return trace.Pointer(surface);
}

// Deliberate: an invalid instance sets no last error here, unlike in the other hooks.
extern "C" void APIENTRY DrvDisableSurface(DHPDEV dhpdev) {
    const TraceScope trace("DrvDisableSurface");
    PDEV* pdev = ValidInstance(dhpdev);
    if (pdev == nullptr || pdev->hSurface == nullptr) return;
    EngDeleteSurface(pdev->hSurface);
    pdev->hSurface = nullptr;
}

}  // namespace orvex
