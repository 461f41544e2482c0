// The page bitmap of a device.

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;

using PageBitmapHooks = DriverTest;

TEST_F(PageBitmapHooks, MakeABitmapAsLargeAsThePage) {
    mask = 3;
    DeviceMode mode = Mode();
    mode.pub.dmPrintQuality = 600;
    mode.pub.dmPaperWidth = 1000;
    mode.pub.dmPaperLength = 1500;
    const auto device = Session().EnablePdev(Bytes(mode));
    Session().CompletePdev(*device);
    LogLines();
    ASSERT_TRUE(Session().EnableSurface(*device));
    const SURFOBJ& surface = *device->Surface();
    EXPECT_EQ(surface.sizlBitmap.cx, 2362);
    EXPECT_EQ(surface.sizlBitmap.cy, 3543);
    EXPECT_EQ(surface.lDelta, 9448);
    EXPECT_EQ(surface.iBitmapFormat, static_cast<ULONG>(BMF_32BPP));
    EXPECT_EQ(Session().Graphics().FindSurface(device->SurfaceHandle())->hooks, 0u);
    EXPECT_THAT(LogLines(), AllOf(Contains("[Trace] <DrvEnableSurface>"),
                                  Contains("[Info]  Surface 2362x3543 at 600dpi 32BPP"),
                                  Contains("[Trace] </DrvEnableSurface>")));
}

TEST_F(PageBitmapHooks, DeleteTheBitmapOnce) {
    mask = 3;
    DriverSession& session = Session();
    const auto device = Enable(Mode());
    LogLines();
    const auto deletions = [&] { return session.Graphics().Calls(GraphicsService::kDeleteSurface); };
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 1u);
    session.Hooks().disableSurface(device->Instance());
    session.Hooks().disableSurface(device->Instance());
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(deletions(), 1u);
    EXPECT_EQ(InstanceOf(*device).hSurface, nullptr);
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvDisableSurface>", "[Trace] </DrvDisableSurface>",
                                        "[Trace] <DrvDisableSurface>", "[Trace] </DrvDisableSurface>"));
    SetLastError(0);
    session.Hooks().disableSurface(nullptr);
    EXPECT_EQ(GetLastError(), 0u);  // silent, unlike the other hooks
}

TEST_F(PageBitmapHooks, ReportABitmapThatCannotBeMade) {
    const auto device = Session().EnablePdev(Bytes(Mode()));
    Session().CompletePdev(*device);
    Session().Graphics().FailCall(GraphicsService::kCreateBitmap);
    EXPECT_FALSE(Session().EnableSurface(*device));
    EXPECT_THAT(LogLines(), Contains("[Error] Could not create surface."));
    EXPECT_EQ(InstanceOf(*device).hSurface, nullptr);
}

TEST_F(PageBitmapHooks, DeleteABitmapThatCannotBeAssociated) {
    const auto device = Session().EnablePdev(Bytes(Mode()));
    Session().CompletePdev(*device);
    Session().Graphics().FailCall(GraphicsService::kAssociateSurface);
    EXPECT_FALSE(Session().EnableSurface(*device));
    EXPECT_EQ(Session().Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(InstanceOf(*device).hSurface, nullptr);
}

}  // namespace orvex
