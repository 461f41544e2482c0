#include "driver/support/module.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

using namespace tools;
using testing::ElementsAre;

using Entry = DriverTest;

TEST_F(Entry, RefusesAnOlderGraphicsEngineAndAShortRecordWithoutTouchingIt) {
    const auto enable = Session().Driver().EnableDriver();
    DRVENABLEDATA data;
    memset(&data, 0x5A, sizeof data);
    EXPECT_FALSE(enable(0x2FFFF, sizeof data, &data));
    EXPECT_FALSE(enable(0x30000, 15, &data));
    const auto* bytes = reinterpret_cast<const uint8_t*>(&data);
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof data, [](uint8_t value) { return value == 0x5A; }));
}

TEST_F(Entry, OffersTenHooksInTheirOrder) {
    DRVENABLEDATA data = {};
    ASSERT_TRUE(Session().Driver().EnableDriver()(0x30000, 16, &data));
    EXPECT_EQ(data.iDriverVersion, 0x30000u);
    ASSERT_EQ(data.c, 10u);
    std::vector<ULONG> indices;
    for (ULONG i = 0; i < data.c; ++i) {
        indices.push_back(static_cast<ULONG>(data.pdrvfn[i].iFunc));
        EXPECT_NE(data.pdrvfn[i].pfn, nullptr);
    }
    EXPECT_THAT(indices, ElementsAre(0, 7, 1, 2, 3, 4, 33, 32, 35, 34));
}

TEST_F(Entry, ReportsThatItRunsInUserMode) {
    const auto query = Session().Driver().QueryDriverInfo();
    DWORD mode = 0, needed = 0;
    EXPECT_TRUE(query(DRVQUERY_USERMODE, &mode, sizeof mode, &needed));
    EXPECT_EQ(mode, 1u);
    EXPECT_EQ(needed, 4u);
}

TEST_F(Entry, ReportsTheSizeThatAShortBufferLacks) {
    const auto query = Session().Driver().QueryDriverInfo();
    DWORD mode = 77, needed = 0;
    SetLastError(0);
    EXPECT_FALSE(query(DRVQUERY_USERMODE, &mode, 3, &needed));
    EXPECT_EQ(GetLastError(), 122u);
    EXPECT_EQ(needed, 4u);
    EXPECT_EQ(mode, 77u);
    needed = 0;
    EXPECT_FALSE(query(DRVQUERY_USERMODE, nullptr, 100, &needed));
    EXPECT_EQ(GetLastError(), 122u);
    EXPECT_EQ(needed, 4u);
}

TEST_F(Entry, RefusesAnyOtherQuery) {
    DWORD mode = 0, needed = 99;
    SetLastError(0);
    EXPECT_FALSE(Session().Driver().QueryDriverInfo()(2, &mode, sizeof mode, &needed));
    EXPECT_EQ(GetLastError(), 87u);
    EXPECT_EQ(needed, 99u);
}

TEST_F(Entry, TracesTheQuery) {
    mask = 3;
    DriverSession& session = Session();
    session.EnablePdev({});  // sets the mask
    LogLines();
    DWORD mode = 0, needed = 0;
    session.Driver().QueryDriverInfo()(1, &mode, 4, &needed);
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvQueryDriverInfo>", "[Trace] Return: TRUE",
                                        "[Trace] </DrvQueryDriverInfo>"));
    session.Driver().QueryDriverInfo()(3, &mode, 4, &needed);
    EXPECT_THAT(LogLines(), ElementsAre("[Trace] <DrvQueryDriverInfo>", "[Trace] Return: FALSE",
                                        "[Trace] </DrvQueryDriverInfo>"));
}

#ifndef _WIN32  // on Windows only the loader calls the entry point

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

TEST_F(Entry, KeepsTheModuleThatAProcessAttachedWith) {
    Session();
    const HMODULE module = g_hModule;
    const auto other = reinterpret_cast<HMODULE>(this);
    for (const DWORD reason : {DLL_PROCESS_DETACH, DLL_THREAD_ATTACH, DLL_THREAD_DETACH}) {
        EXPECT_TRUE(DllMain(other, reason, nullptr));
        EXPECT_EQ(g_hModule, module);
    }
    EXPECT_TRUE(DllMain(other, DLL_PROCESS_ATTACH, nullptr));
    EXPECT_EQ(g_hModule, other);
    DllMain(module, DLL_PROCESS_ATTACH, nullptr);
}

TEST_F(Entry, RefusesADeviceWhileItsModuleIsUnknown) {
    Session();
    const HMODULE module = g_hModule;
    DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
    EXPECT_EQ(Session().EnablePdev(Bytes(Mode()))->Instance(), nullptr);
    EXPECT_EQ(Session().Graphics().LivePalettes(), 0u);
    DllMain(module, DLL_PROCESS_ATTACH, nullptr);
}

#endif

}  // namespace orvex
