#include "driver/device_capabilities.h"

#include <cstring>

#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;

namespace {

class DeviceCapabilities : public DriverTest {
  protected:
    GDIINFO Capabilities(int16_t quality, int16_t width, int16_t length, int16_t orientation) {
        DeviceMode mode = Mode();
        mode.pub.dmPrintQuality = quality;
        mode.pub.dmPaperWidth = width;
        mode.pub.dmPaperLength = length;
        mode.pub.dmOrientation = orientation;
        return Session().EnablePdev(Bytes(mode))->Capabilities();
    }
};

}  // namespace

TEST_F(DeviceCapabilities, HaveOneOfTwoResolutions) {
    EXPECT_EQ(Capabilities(300, 300, 400, 1).ulLogPixelsX, 300u);
    const GDIINFO caps = Capabilities(600, 300, 400, 1);
    EXPECT_EQ(caps.ulLogPixelsX, 600u);
    EXPECT_EQ(caps.ulLogPixelsY, 600u);
    EXPECT_EQ(caps.ulDevicePelsDPI, 600u);
    EXPECT_EQ(caps.denStyleStep, 24u);
}

TEST_F(DeviceCapabilities, UseTheLowerResolutionForAnyOtherQuality) {
    for (const int16_t quality : {int16_t{0}, int16_t{720}, int16_t{-4}, int16_t{299}, int16_t{601}}) {
        const auto device = Session().EnablePdev(Bytes(Mode()));
        Session().CompletePdev(*device);
        InstanceOf(*device).devmode.pub.dmPrintQuality = quality;
        ASSERT_TRUE(Session().EnableSurface(*device));
        EXPECT_EQ(device->Surface()->sizlBitmap.cx, kWidthPx) << quality;
    }
}

TEST_F(DeviceCapabilities, MeasureThePageInPixelsAndMillimeters) {
    EXPECT_EQ(Capabilities(300, 1709, 1500, DMORIENT_PORTRAIT).ulHorzRes, 2018u);  // of 2018.4999
    GDIINFO caps = Capabilities(300, 1000, 1500, DMORIENT_PORTRAIT);
    EXPECT_EQ(caps.ulHorzRes, 1181u);
    EXPECT_EQ(caps.ulVertRes, 1772u);
    EXPECT_EQ(caps.ulHorzSize, 100u);
    EXPECT_EQ(caps.ulVertSize, 150u);
    EXPECT_EQ(caps.szlPhysSize.cx, 1181);
    EXPECT_EQ(caps.szlPhysSize.cy, 1772);
    caps = Capabilities(300, 1000, 1500, DMORIENT_LANDSCAPE);
    EXPECT_EQ(caps.ulHorzRes, 1772u);
    EXPECT_EQ(caps.ulVertRes, 1181u);
    EXPECT_EQ(caps.ulHorzSize, 150u);
    EXPECT_EQ(caps.ulVertSize, 100u);
}

TEST_F(DeviceCapabilities, DescribeA24BitColorRasterPrinter) {
    const GDIINFO caps = Capabilities(300, 300, 400, 1);
    EXPECT_EQ(caps.ulVersion, 0x401u);
    EXPECT_EQ(caps.ulTechnology, 2u);
    EXPECT_EQ(caps.cBitsPixel, 24u);
    EXPECT_EQ(caps.cPlanes, 1u);
    EXPECT_EQ(caps.ulNumColors, 8u);
    EXPECT_EQ(caps.flRaster, 0u);
    EXPECT_EQ(caps.flTextCaps, 0x2000u);
    EXPECT_EQ(caps.ulDACRed, 0u);
    EXPECT_EQ(caps.ulDACGreen, 0u);
    EXPECT_EQ(caps.ulDACBlue, 0u);
    EXPECT_EQ(caps.ulAspectX, 100u);
    EXPECT_EQ(caps.ulAspectY, 100u);
    EXPECT_EQ(caps.ulAspectXY, 141u);
    EXPECT_EQ(caps.xStyleStep, 1);
    EXPECT_EQ(caps.yStyleStep, 1);
    EXPECT_EQ(caps.denStyleStep, 12);
    EXPECT_EQ(caps.ptlPhysOffset.x, 0);
    EXPECT_EQ(caps.ptlPhysOffset.y, 0);
    EXPECT_EQ(caps.ulPrimaryOrder, 0u);
    EXPECT_EQ(caps.ulHTPatternSize, 0u);
    EXPECT_EQ(caps.ulHTOutputFormat, 6u);
    EXPECT_EQ(caps.flHTFlags, 2u);
    EXPECT_EQ(caps.flShadeBlend, 0u);
    const uint8_t zeros[sizeof caps.ciDevice] = {};
    EXPECT_EQ(memcmp(&caps.ciDevice, zeros, sizeof zeros), 0);
}

TEST_F(DeviceCapabilities, OfferHalftonesAPaletteAndNoFonts) {
    const auto device = Enable(Mode());
    const DEVINFO& info = device->Information();
    EXPECT_EQ(info.flGraphicsCaps, 0x30u);
    EXPECT_EQ(info.iDitherFormat, 6u);
    EXPECT_EQ(info.cxDither, 0u);
    EXPECT_EQ(info.cyDither, 0u);
    EXPECT_EQ(info.cFonts, 0u);
    EXPECT_NE(info.hpalDefault, nullptr);
    for (const HSURF pattern : device->Patterns()) EXPECT_EQ(pattern, nullptr);
}

TEST_F(DeviceCapabilities, AreCutToTheSizeOfTheCallersRecords) {
    DriverSession& session = Session();
    const DeviceMode mode = Mode();
    std::vector<uint8_t> caps(400, 0x5A), info(400, 0x5A);
    const auto enable = [&](ULONG cjCaps, ULONG cjDevInfo) {
        const DHPDEV instance =
            session.Hooks().enablePdev(const_cast<DEVMODEW*>(&mode.pub), nullptr, 0, nullptr, cjCaps,
                                       reinterpret_cast<GDIINFO*>(caps.data()), cjDevInfo,
                                       reinterpret_cast<DEVINFO*>(info.data()), nullptr, nullptr, nullptr);
        ASSERT_NE(instance, nullptr);
        session.Hooks().disablePdev(instance);
    };
    enable(400, 400);
    EXPECT_EQ(caps[0], 0x01);
    EXPECT_EQ(caps[319], 0);
    EXPECT_EQ(caps[320], 0x5A);
    EXPECT_EQ(info[311], 0);
    EXPECT_EQ(info[312], 0x5A);
    std::fill(caps.begin(), caps.end(), 0x5A);
    std::fill(info.begin(), info.end(), 0x5A);
    enable(10, 4);
    EXPECT_EQ(caps[9], 0);
    EXPECT_EQ(caps[10], 0x5A);
    EXPECT_EQ(info[0], 0x30);
    EXPECT_EQ(info[4], 0x5A);
}

}  // namespace orvex
