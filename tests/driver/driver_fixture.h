// The built driver with a recording print engine, a spooler, a heap and an installation folder of the test's
// own, driven hook by hook. What the driver has left on that heap when it is unloaded fails the test.
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "tests/driver/recording_engine.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/scratch_folder.h"
#include "tools/host/debug_heap.h"
#include "tools/host/driver_session.h"

namespace orvex {

using namespace tools;
struct PDEV;

class DriverTest : public testing::Test {
  protected:
    static constexpr char kProfile[] = "test.zvp";

    // Installs a grid profile, "Test colours", whose ink is ProfileColor() of the colour, at every grid
    // colour.
    DriverTest();
    ~DriverTest() override;

    // A valid device mode with that profile: portrait, 300 dpi, 30 x 40 mm, centred, no print-head offset.
    static DeviceMode Mode();
    static constexpr int32_t kWidthPx = 354;  // of that page
    static constexpr int32_t kHeightPx = 472;

    static std::vector<uint8_t> Bytes(const DeviceMode& mode);

    // Loads the driver, once, with `engine` or what `source` names. Logging is on, at `mask`.
    DriverSession& Session() { return Session(engine.Entries()); }
    DriverSession& Session(EngineSource source);
    uint32_t mask = 1;  // errors and information; 3 adds the trace

    // Unloads the driver and loads it again with another engine.
    DriverSession& Restart(EngineSource source);

    // A device with its page bitmap.
    std::unique_ptr<Device> Enable(const DeviceMode& mode);
    // The same with a job and its first page begun.
    std::unique_ptr<Device> StartPage(const DeviceMode& mode, const std::string& title = "title");

    // What the driver keeps of a device.
    static PDEV& InstanceOf(const Device& device) { return *reinterpret_cast<PDEV*>(device.Instance()); }

    // Of the driver's own allocations.
    DebugHeap& Heap() { return *heap_; }
    // The blocks that it has not freed, in words. The log's two paths are its to keep.
    std::vector<std::string> LeftOnHeap() const;

    Spooler& PrintSpooler() { return Session().PrintSpooler(); }
    Spooler::Printer& Printer() { return Session().Printer(); }
    std::vector<std::string> LogLines() { return log_->TakeLines(); }

    static uint32_t Pixel(const SURFOBJ& surface, int32_t x, int32_t y);
    static void SetPixel(SURFOBJ& surface, int32_t x, int32_t y, uint32_t color);

    ScratchFolder installation;
    RecordingEngine engine;

  private:
    void Unload();

    std::optional<DriverSession> session_;
    std::optional<DebugHeap> heap_;
    std::optional<LogCapture> log_;
};

// The ink of the test profile, another one at 600 dpi; none for white.
uint32_t ProfileColor(uint32_t color, bool at600Dpi);

}  // namespace orvex
