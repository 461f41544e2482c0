#include "tools/host/driver_session.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "tests/kit/scratch_folder.h"
#include "tests/tools/common/thrown_text.h"
#include "tests/tools/host/refusing_engine.h"

namespace orvex::tools {

using testing::IsEmpty;
using testing::StartsWith;

namespace {

// A print engine that passes a few bytes to the driver's callback when a page begins or a job ends, and fails
// if the callback does.
struct EmittingEngine {
    inline static HPCRLIB_OutputCallback output = nullptr;
    inline static void* outputContext = nullptr;

    static uint32_t Emit() {
        static constexpr char kBytes[] = "@PJL COMMENT job";
        return output(reinterpret_cast<const uint8_t*>(kBytes), sizeof kBytes - 1, outputContext) != 0 ? 1
                                                                                                       : 0;
    }
    static uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback callback, void* context, uint32_t,
                                          uint32_t) {
        output = callback;
        outputContext = context;
        return 7;
    }
    static uint32_t HPCRLIB_CALL JobEnd(uint64_t) { return Emit(); }
    static uint32_t HPCRLIB_CALL PageStart(uint64_t, uint32_t, uint32_t) { return Emit(); }
};

constexpr PrintEngine kEmittingEngine = {
    EmittingEngine::JobStart, EmittingEngine::JobEnd, EmittingEngine::PageStart, RefusingEngine::BlockStart,
    RefusingEngine::Row,      RefusingEngine::End,    RefusingEngine::End,
};

class DriverSessionTest : public testing::Test {
  protected:
    DriverSessionTest() : session({.installation = installation.Path(), .engine = kEmittingEngine}) {}

    ScratchFolder installation;
    DriverSession session;
};

}  // namespace

TEST_F(DriverSessionTest, RunsAJobAndLeavesNothingBehind) {
    std::vector<size_t> drawn;
    const JobOutcome outcome =
        session.RunJob({.title = "t", .pages = 3, .draw = [&](size_t page, SURFOBJ& surface) {
                            EXPECT_EQ(surface.iBitmapFormat, static_cast<ULONG>(BMF_32BPP));
                            drawn.push_back(page);
                        }});
    EXPECT_TRUE(outcome.Printed()) << outcome.failure;
    EXPECT_EQ(outcome.pagesPrinted, 3u);
    EXPECT_THAT(drawn, testing::ElementsAre(0u, 1u, 2u));
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(session.Graphics().LivePalettes(), 0u);
    EXPECT_THAT(session.Graphics().Complaints(), IsEmpty());
    EXPECT_FALSE(session.Engine().Bound());
    EXPECT_EQ(session.Engine().Books().jobsEnded, 1u);
    EXPECT_EQ(session.PrintSpooler().OpenHandles(), 1u) << "the session's own";
    EXPECT_THAT(session.Printer().written, StartsWith("@PJL SET COPIES=1\n"));
}

TEST_F(DriverSessionTest, SaysWhichHookRefused) {
    session.Graphics().FailCall(GraphicsService::kCreatePalette);
    EXPECT_EQ(session.RunJob({}).failure, "the driver refused the device (DrvEnablePDEV)");
    session.Graphics().FailCall(GraphicsService::kCreateBitmap);
    EXPECT_EQ(session.RunJob({}).failure, "the driver made no page bitmap (DrvEnableSurface)");
    session.Engine().FailLoading(true);
    EXPECT_EQ(session.RunJob({}).failure,
              "the driver refused the job (DrvStartDoc): hpcrlib.dll can't be loaded (error 126)");
    session.Engine().FailLoading(false);
    EXPECT_TRUE(session.RunJob({}).Printed());
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(session.Graphics().LivePalettes(), 0u);
}

TEST_F(DriverSessionTest, SaysWhenAWriteIsLost) {
    int writes = 0;
    session.SetSink([&](std::string_view) { return ++writes < 5; });
    const JobOutcome outcome = session.RunJob({.pages = 2});
    EXPECT_EQ(outcome.failure, "a write to the spooler failed");
    EXPECT_EQ(outcome.pagesPrinted, 0u);
    EXPECT_FALSE(session.Engine().Bound());
}

TEST_F(DriverSessionTest, NoticesALostWriteThatTheDriverIgnores) {
    session.SetSink([&](std::string_view bytes) { return !bytes.starts_with("@PJL JOB NAME"); });
    EXPECT_EQ(session.RunJob({}).failure, "a write to the spooler failed");
}

TEST_F(DriverSessionTest, EndsTheJobWhenAPageCannotBeDrawn) {
    EXPECT_THROW(session.RunJob({.pages = 2,
                                 .draw =
                                     [](size_t page, SURFOBJ&) {
                                         if (page == 1) throw std::runtime_error("no picture");
                                     }}),
                 std::runtime_error);
    EXPECT_FALSE(session.Engine().Bound());
    EXPECT_EQ(session.Engine().Books().jobsEnded, 1u);
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_TRUE(session.RunJob({}).Printed());
}

TEST_F(DriverSessionTest, ResetsTheDeviceBetweenPages) {
    // A device mode with a byte beyond its own size, for which the driver must not look.
    std::vector<uint8_t> mode(221, 0);
    mode[68] = 220;  // dmSize
    std::vector<const Device*> devices;
    std::vector<size_t> sizes;
    std::vector<HDEV> drawnOn;
    const JobOutcome outcome = session.RunJob(
        {.deviceMode = {},
         .title = "t",
         .pages = 3,
         .draw = [&](size_t, SURFOBJ& surface) { drawnOn.push_back(surface.hdev); },
         .reset =
             [&](size_t page) {
                 return page == 1 ? std::span<const uint8_t>(mode) : std::span<const uint8_t>();
             },
         .onDevice =
             [&](const Device& device) {
                 devices.push_back(&device);
                 sizes.push_back(session.Graphics().LiveSurfaces());
             }});
    EXPECT_TRUE(outcome.Printed()) << outcome.failure;
    EXPECT_EQ(outcome.pagesPrinted, 3u);
    ASSERT_EQ(devices.size(), 2u);
    ASSERT_EQ(drawnOn.size(), 3u);
    EXPECT_NE(drawnOn[0], drawnOn[1]) << "a new device";
    EXPECT_EQ(drawnOn[1], drawnOn[2]);
    EXPECT_THAT(sizes, testing::ElementsAre(1u, 1u)) << "the old one is gone";
    EXPECT_EQ(session.Engine().Books().jobsStarted, 1u);
    EXPECT_EQ(session.Engine().Books().jobsEnded, 1u);
    EXPECT_EQ(session.Engine().Books().pagesEnded, 3u);
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(session.Graphics().LivePalettes(), 0u);
}

TEST_F(DriverSessionTest, EndsTheJobWhenADeviceCannotBeReset) {
    const std::vector<uint8_t> mode(220, 0);
    const auto reset = [&](size_t page) {
        if (page == 1) session.Graphics().FailCall(GraphicsService::kCreateBitmap);
        return page == 1 ? std::span<const uint8_t>(mode) : std::span<const uint8_t>();
    };
    const JobOutcome outcome = session.RunJob({.pages = 2, .reset = reset});
    EXPECT_EQ(outcome.failure, "the driver refused to reset the device (DrvResetPDEV)");
    EXPECT_EQ(outcome.pagesPrinted, 1u);
    EXPECT_FALSE(session.Engine().Bound());
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(session.Graphics().LivePalettes(), 0u);
}

TEST_F(DriverSessionTest, DisablesADeviceThatATestLeavesEnabled) {
    {
        const std::unique_ptr<Device> device = session.EnablePdev({});
        ASSERT_NE(device->Instance(), nullptr);
        session.CompletePdev(*device);
        ASSERT_TRUE(session.EnableSurface(*device));
        EXPECT_NE(device->Surface(), nullptr);
        EXPECT_EQ(device->Surface()->dhpdev, device->Instance());
        EXPECT_EQ(session.Graphics().LiveSurfaces(), 1u);
    }
    EXPECT_EQ(session.Graphics().LiveSurfaces(), 0u);
    EXPECT_EQ(session.Graphics().LivePalettes(), 0u);
}

TEST(HookTable, IsAcceptedOnlyAsExpected) {
    DRVENABLEDATA table = {};
    const DriverLibrary driver(DefaultDriverFile());
    ASSERT_TRUE(driver.EnableDriver()(0x30000, sizeof table, &table));
    EXPECT_NO_THROW(ReadHookTable(table));
    std::vector<DRVFN> hooks(table.pdrvfn, table.pdrvfn + table.c);
    table.pdrvfn = hooks.data();
    std::swap(hooks[2], hooks[3]);
    EXPECT_THROW(ReadHookTable(table), DriverError);
    std::swap(hooks[2], hooks[3]);
    hooks[9].pfn = nullptr;
    EXPECT_THROW(ReadHookTable(table), DriverError);
    table.c = 9;
    EXPECT_THROW(ReadHookTable(table), DriverError);
    table.c = 10;
    table.iDriverVersion = 0x20000;
    EXPECT_THROW(ReadHookTable(table), DriverError);
}

#ifdef _WIN32
TEST(DriverLibrary, SaysWhyAFileIsNotADriver) {
    const auto complaint = [](const std::filesystem::path& file) {
        return ThrownText<DriverError>([&] { DriverLibrary driver(file); });
    };
    EXPECT_EQ(complaint("no-such-driver.dll"), "the driver no-such-driver.dll can't be loaded (error 126)");
    EXPECT_EQ(complaint("kernel32.dll"), "kernel32.dll is no printer driver");
}
#endif

}  // namespace orvex::tools
