#include "driver/device_instance.h"

#include <cstring>

#include "tests/driver/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

// Adds a label to the printer's list.
void AddLabel(PrinterData& data, int number, const char* name, const char* width, const char* length,
              DWORD units) {
    const std::string key = "Label Sizes\\" + std::to_string(number);
    data.SetNumber(key, "version", 1);
    data.SetText(key, "name", name);
    data.SetText(key, "width", width);
    data.SetText(key, "length", length);
    data.SetNumber(key, "units", units);
}

class DeviceInstance : public DriverTest {
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

TEST_F(DeviceInstance, HoldsTheMergedDeviceModeBetweenItsSignatures) {
    const auto device = Enable(Mode());
    const PDEV& pdev = InstanceOf(*device);
    EXPECT_EQ(memcmp(&pdev.signature, "DQLS", 4), 0);
    EXPECT_EQ(memcmp(&pdev.signatureTail, "DQLS", 4), 0);
    EXPECT_EQ(pdev.devmode.pub.dmPaperWidth, 300);
    EXPECT_EQ(pdev.devmode.priv.signature, kPrivateSignature);
    EXPECT_EQ(pdev.dwPageWidth, 300u);
    EXPECT_EQ(pdev.dwPageLength, 400u);
    EXPECT_EQ(pdev.orientation, DMORIENT_PORTRAIT);
    EXPECT_EQ(pdev.cCopies, -1);
    EXPECT_EQ(pdev.flags, 0u);
    EXPECT_EQ(pdev.pageCount, 0u);
    EXPECT_EQ(pdev.yCoord, 0u);
    EXPECT_EQ(pdev.carryWord1, 0u);
    EXPECT_EQ(pdev.carryWord2, 0u);
    EXPECT_EQ(pdev.dwReserved, 0u);
    EXPECT_EQ(pdev.hdev, device->Handle());
    EXPECT_EQ(pdev.hSurface, device->SurfaceHandle());
    EXPECT_EQ(pdev.hModule, Session().Driver().Module());
    EXPECT_EQ(pdev.hPrinter, Session().PrinterHandle());
}

TEST_F(DeviceInstance, HasOneOfTwoResolutions) {
    for (const int16_t quality : {300, 0, 720, -1, -4, 150}) {
        EXPECT_EQ(Capabilities(quality, 300, 400, 1).ulLogPixelsX, 300u) << quality;
    }
    const GDIINFO caps = Capabilities(600, 300, 400, 1);
    EXPECT_EQ(caps.ulLogPixelsX, 600u);
    EXPECT_EQ(caps.ulLogPixelsY, 600u);
    EXPECT_EQ(caps.ulDevicePelsDPI, 600u);
    EXPECT_EQ(caps.denStyleStep, 24u);
}

TEST_F(DeviceInstance, PrintsAtTheLowerResolutionWhateverElseItsRecordSays) {
    for (const int16_t quality : {int16_t{0}, int16_t{720}, int16_t{-4}, int16_t{299}, int16_t{601}}) {
        const auto device = Session().EnablePdev(Bytes(Mode()));
        Session().CompletePdev(*device);
        InstanceOf(*device).devmode.pub.dmPrintQuality = quality;
        ASSERT_TRUE(Session().EnableSurface(*device));
        EXPECT_EQ(device->Surface()->sizlBitmap.cx, kWidthPx) << quality;
    }
}

TEST_F(DeviceInstance, MeasuresThePageInPixelsAndMillimetres) {
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

TEST_F(DeviceInstance, IsA24BitColorRasterPrinter) {
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

TEST_F(DeviceInstance, OffersHalftonesAPaletteAndNoFonts) {
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

TEST_F(DeviceInstance, CopiesNoMoreOfItsRecordsThanThereIs) {
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

TEST_F(DeviceInstance, IsRefusedWithoutAPaletteAndLeaksNothing) {
    mask = 3;
    Session().Graphics().FailCall(EngineService::kCreatePalette);
    const auto device = Session().EnablePdev(Bytes(Mode()));
    EXPECT_EQ(device->Instance(), nullptr);
    EXPECT_EQ(Session().Graphics().LivePalettes(), 0u);
    EXPECT_THAT(LogLines(), Contains("[Trace] Return: 0000000000000000"));
}

TEST_F(DeviceInstance, IsRefusedWithoutMemory) {
    mask = 3;
    const ImportPatch memory(Session().Driver().Module(), "LocalAlloc",
                             reinterpret_cast<void*>(+[](UINT, SIZE_T) WINAPI -> HLOCAL { return nullptr; }));
    EXPECT_EQ(Session().EnablePdev(Bytes(Mode()))->Instance(), nullptr);
    EXPECT_EQ(Session().Graphics().LivePalettes(), 0u);
}

TEST_F(DeviceInstance, KeepsALabelsSizeEvenWhereAFreeSizeWouldBeReplaced) {
    for (const int16_t number : {kPaperDefault, kPaperFirstLabel}) {
        AddLabel(Printer().data, number, "Tiny", "10", "20", kUnitsMillimeters);
        DeviceMode mode = Mode();
        mode.pub.dmPaperSize = number;
        mode.priv.dmPaperSize = 300;
        const auto device = Enable(mode);
        EXPECT_EQ(InstanceOf(*device).dwPageWidth, 100u) << number;
        EXPECT_EQ(InstanceOf(*device).dwPageLength, 200u) << number;
    }
}

TEST_F(DeviceInstance, KeepsTheSizeOfTheLabelThatItsOwnTextsDescribe) {
    AddLabel(Printer().data, 258, "Changed since", "10", "20", kUnitsMillimeters);
    DeviceMode mode = Mode();
    mode.pub.dmPaperSize = mode.priv.dmPaperSize = 258;
    const auto device = Enable(mode);
    EXPECT_EQ(InstanceOf(*device).dwPageWidth, 300u);
    EXPECT_EQ(InstanceOf(*device).dwPageLength, 400u);
}

TEST_F(DeviceInstance, TakesNoLabelForAFreeSize) {
    AddLabel(Printer().data, kPaperCustom, "Not free", "10", "20", kUnitsMillimeters);
    const auto device = Enable(Mode());
    EXPECT_EQ(InstanceOf(*device).dwPageWidth, 300u);
    EXPECT_EQ(InstanceOf(*device).dwPageLength, 400u);
}

TEST_F(DeviceInstance, TakesNothingOfALabelThatCannotBeReadWhole) {
    PrinterData& data = Printer().data;
    AddLabel(data, 258, "Whole", "80", "90", kUnitsMillimeters);
    data.SetNumber("Label Sizes\\259", "version", 1);
    data.SetText("Label Sizes\\259", "name", "Without a length");
    data.SetText("Label Sizes\\259", "width", "100");
    DeviceMode mode = Mode();
    mode.pub.dmPaperSize = 259;
    const auto device = Enable(mode);
    EXPECT_EQ(InstanceOf(*device).dwPageWidth, 300u);
    EXPECT_EQ(InstanceOf(*device).dwPageLength, 400u);
}

TEST_F(DeviceInstance, TakesTheSizeOfALabelThatTheCallerChoseByNumber) {
    AddLabel(Printer().data, 258, "Small", "4", "6.5", kUnitsInches);
    AddLabel(Printer().data, 259, "Metric", "80", "120.25", kUnitsMillimeters);
    AddLabel(Printer().data, 260, "Tenths", "777", "888", 7);
    AddLabel(Printer().data, 261, "Past 16 bits", "9000", "6653.6", kUnitsMillimeters);
    struct Case {
        int16_t number;
        uint32_t width, length;
    };
    for (const Case& item : {Case{258, 1016, 1651}, {259, 800, 1203}, {260, 777, 888}, {261, 24464, 1000}}) {
        DeviceMode mode = Mode();
        mode.pub.dmPaperSize = item.number;
        const auto device = Enable(mode);
        EXPECT_EQ(InstanceOf(*device).dwPageWidth, item.width) << item.number;
        EXPECT_EQ(InstanceOf(*device).dwPageLength, item.length) << item.number;
    }
}

TEST_F(DeviceInstance, IsCheckedAtBothEndsByEveryHook) {
    DriverSession& session = Session();
    const auto device = Enable(Mode());
    PDEV& pdev = InstanceOf(*device);
    for (uint32_t* signature : {&pdev.signature, &pdev.signatureTail}) {
        *signature ^= 1;
        const auto failsWith87 = [](auto call) {
            SetLastError(0);
            const bool result = call();
            EXPECT_EQ(GetLastError(), 87u);
            return !result;
        };
        EXPECT_TRUE(failsWith87([&] { return session.StartDoc(*device, "x"); }));
        EXPECT_TRUE(failsWith87([&] { return session.StartPage(*device); }));
        EXPECT_TRUE(failsWith87([&] { return session.SendPage(*device); }));
        EXPECT_TRUE(failsWith87([&] { return session.EndDoc(*device); }));
        EXPECT_TRUE(
            failsWith87([&] { return session.Hooks().enableSurface(device->Instance()) != nullptr; }));
        EXPECT_TRUE(failsWith87(
            [&] { return session.Hooks().resetPdev(device->Instance(), device->Instance()) != 0; }));
        EXPECT_TRUE(
            failsWith87([&] { return session.Hooks().completePdev(device->Instance(), nullptr), false; }));
        EXPECT_TRUE(failsWith87([&] { return session.Hooks().disablePdev(device->Instance()), false; }));
        *signature ^= 1;
    }
    EXPECT_EQ(pdev.pageCount, 0u);
    EXPECT_THAT(engine.calls, ElementsAre());
    EXPECT_EQ(pdev.hdev, device->Handle());
}

TEST_F(DeviceInstance, OfNoneIsRefusedByEveryHook) {
    DriverSession& session = Session();
    SURFOBJ surface = {};
    for (SURFOBJ* pso : {static_cast<SURFOBJ*>(nullptr), &surface}) {
        WCHAR title[] = {'x', 0};
        SetLastError(0);
        EXPECT_FALSE(session.Hooks().startDoc(pso, title, 1));
        EXPECT_EQ(GetLastError(), 87u);
        EXPECT_FALSE(session.Hooks().startPage(pso));
        EXPECT_FALSE(session.Hooks().sendPage(pso));
        EXPECT_FALSE(session.Hooks().endDoc(pso, 0));
    }
    const auto device = Enable(Mode());
    SetLastError(0);
    EXPECT_FALSE(session.Hooks().resetPdev(nullptr, device->Instance()));
    EXPECT_EQ(GetLastError(), 87u);
    SetLastError(0);
    EXPECT_FALSE(session.Hooks().resetPdev(device->Instance(), nullptr));
    EXPECT_EQ(GetLastError(), 87u);
}

TEST_F(DeviceInstance, CarriesPageAndStateIntoItsReplacement) {
    mask = 3;
    const auto old = Enable(Mode());
    DeviceMode changed = Mode();
    changed.pub.dmOrientation = DMORIENT_LANDSCAPE;
    changed.pub.dmPaperWidth = 500;
    changed.pub.dmCopies = 3;
    const auto fresh = Enable(changed);
    PDEV& from = InstanceOf(*old);
    PDEV& to = InstanceOf(*fresh);
    from.yCoord = 11;
    from.pageCount = 4;
    from.carryWord1 = 0x1122334455667788;
    from.carryWord2 = 9;
    from.flags = PDEV_IN_JOB;
    LogLines();
    EXPECT_TRUE(Session().ResetPdev(*old, *fresh));
    EXPECT_EQ(to.dwPageWidth, 300u);
    EXPECT_EQ(to.dwPageLength, 400u);
    EXPECT_EQ(to.orientation, DMORIENT_PORTRAIT);
    EXPECT_EQ(to.yCoord, 11u);
    EXPECT_EQ(to.pageCount, 4u);
    EXPECT_EQ(to.carryWord1, 0x1122334455667788u);
    EXPECT_EQ(to.carryWord2, 9u);
    EXPECT_EQ(to.flags, PDEV_IN_JOB | PDEV_RESET);
    EXPECT_EQ(to.devmode.pub.dmCopies, 3);  // nothing carried: the new count stays
    EXPECT_THAT(
        LogLines(),
        ElementsAre("[Trace] <DrvResetPDEV>", "[Info]  dwPageWidth 300<-400", "[Info]  dwPageLength 400<-500",
                    "[Info]  orientation 1<-2", "[Info]  yCoord 11<-0", "[Info]  pageCount 4<-0",
                    "[Info]  dmCopies 1 -> 3", "[Trace] Return: TRUE", "[Trace] </DrvResetPDEV>"));
}

TEST_F(DeviceInstance, HonoursACarriedCopyCountByItsLow16Bits) {
    const auto old = Enable(Mode());
    const auto fresh = Enable(Mode());
    InstanceOf(*old).cCopies = 0x10007;
    LogLines();
    EXPECT_TRUE(Session().ResetPdev(*old, *fresh));
    EXPECT_EQ(InstanceOf(*fresh).cCopies, 0x10007);
    EXPECT_EQ(InstanceOf(*fresh).devmode.pub.dmCopies, 7);
    EXPECT_EQ(InstanceOf(*fresh).flags, PDEV_RESET);
    EXPECT_THAT(LogLines(),
                AllOf(Contains("[Info]  cCopies 65543<--1"), Contains("[Info]  cdmCopies 1<-65543")));
    const auto third = Enable(Mode());
    InstanceOf(*third).devmode.pub.dmCopies = 7;
    LogLines();
    EXPECT_TRUE(Session().ResetPdev(*fresh, *third));
    EXPECT_THAT(LogLines(), Not(Contains(HasSubstr("cdmCopies"))));
}

TEST_F(DeviceInstance, IsTracedWithAllThatBuildsIt) {
    mask = 3;
    Session();
    const auto device = Session().EnablePdev(Bytes(Mode()));
    const std::vector<std::string> lines = LogLines();
    for (const char* name : {"SetupDefaultDevMode", "FillPDevCaps", "FillPDevInfo", "GetDeviceResolution"}) {
        EXPECT_THAT(lines, Contains("[Trace] <" + std::string(name) + ">"));
        EXPECT_THAT(lines, Contains("[Trace] </" + std::string(name) + ">"));
    }
    EXPECT_THAT(lines, AllOf(Contains("[Trace] </FillPDevData>"), Contains("[Trace] </DrvEnablePDEV>")));
}

TEST_F(DeviceInstance, IsTracedWhenItIsCompletedAndDisabled) {
    mask = 3;
    const auto device = Session().EnablePdev(Bytes(Mode()));
    LogLines();
    Session().CompletePdev(*device);
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvCompletePDEV>", "[Trace] </DrvCompletePDEV>"));
    Session().DisablePdev(*device);
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvDisablePDEV>", "[Trace] </DrvDisablePDEV>"));
}

TEST_F(DeviceInstance, HasASurfaceAsLargeAsThePage) {
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

TEST_F(DeviceInstance, HasItsSurfaceDeletedOnce) {
    mask = 3;
    DriverSession& session = Session();
    const auto device = Enable(Mode());
    LogLines();
    const auto deletions = [&] { return session.Graphics().Calls(EngineService::kDeleteSurface); };
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

TEST_F(DeviceInstance, ReportsABitmapThatCannotBeMade) {
    const auto device = Session().EnablePdev(Bytes(Mode()));
    Session().CompletePdev(*device);
    Session().Graphics().FailCall(EngineService::kCreateBitmap);
    EXPECT_FALSE(Session().EnableSurface(*device));
    EXPECT_THAT(LogLines(), Contains("[Error] Could not create surface."));
    EXPECT_EQ(InstanceOf(*device).hSurface, nullptr);
}

TEST_F(DeviceInstance, DeletesABitmapThatCannotBeAssociated) {
    const auto device = Session().EnablePdev(Bytes(Mode()));
    Session().CompletePdev(*device);
    Session().Graphics().FailCall(EngineService::kAssociateSurface);
    EXPECT_FALSE(Session().EnableSurface(*device));
    EXPECT_EQ(Session().Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(InstanceOf(*device).hSurface, nullptr);
}

}  // namespace orvex
