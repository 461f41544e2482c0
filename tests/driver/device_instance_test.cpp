#include "driver/device_instance.h"

#include <cstring>

#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;

using DeviceInstance = DriverTest;

TEST_F(DeviceInstance, ContainsTheMergedDeviceModeBetweenItsSignatures) {
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

TEST_F(DeviceInstance, IsNotMadeWithoutAPaletteAndLeaksNothing) {
    mask = 3;
    Session().Graphics().FailCall(GraphicsService::kCreatePalette);
    const auto device = Session().EnablePdev(Bytes(Mode()));
    EXPECT_EQ(device->Instance(), nullptr);
    EXPECT_EQ(Session().Graphics().LivePalettes(), 0u);
    EXPECT_THAT(LogLines(), Contains("[Trace] Return: 0000000000000000"));
}

TEST_F(DeviceInstance, IsNotMadeWhenOutOfMemory) {
    mask = 3;
    const ImportPatch memory(Session().Driver().Module(), "LocalAlloc",
                             reinterpret_cast<void*>(+[](UINT, SIZE_T) WINAPI -> HLOCAL { return nullptr; }));
    EXPECT_EQ(Session().EnablePdev(Bytes(Mode()))->Instance(), nullptr);
    EXPECT_EQ(Session().Graphics().LivePalettes(), 0u);
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

TEST_F(DeviceInstance, IsRequiredByEveryHook) {
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

TEST_F(DeviceInstance, IsTracedWithEveryStepThatBuildsIt) {
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

}  // namespace orvex
