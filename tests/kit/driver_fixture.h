// The built driver with a recording print engine, a spooler, a watched heap and a test's own installation
// folder, called hook by hook. The test fails if the driver leaves a block on the heap when it is unloaded.
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "tests/kit/heap_watch.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/recording_engine.h"
#include "tests/kit/scratch_folder.h"
#include "tests/plain/job_header.h"
#include "tools/host/driver_session.h"

namespace orvex {

struct PDEV;

class DriverTest : public testing::Test {
  protected:
    static constexpr char kProfile[] = "test.zvp";

    // Installs a grid profile, "Test colours", whose ink at every grid color is ProfileColor() of it.
    DriverTest();
    ~DriverTest() override;

    // Returns the device mode of a small label with that profile.
    static DeviceMode Mode();
    static constexpr int32_t kWidthPx = 354;  // of that page
    static constexpr int32_t kHeightPx = 472;

    // A line of the print engine that the driver inserts the header before.
    static constexpr char kComment[] = "@PJL COMMENT engine\n";
    // Return the facts and all lines of the header of a job with that device mode.
    static plain::HeaderFacts Facts(const std::string& jobName = "My job");
    static std::string Header(const std::string& jobName = "My job");

    static std::vector<uint8_t> Bytes(const DeviceMode& mode);

    // Returns the driver. The first call loads it with `engine` or the library that `source` names, and with
    // the log at `mask`.
    tools::DriverSession& Session() { return Session(engine.Entries()); }
    tools::DriverSession& Session(tools::EngineSource source);
    uint32_t mask = 1;  // errors and information; 3 adds the trace lines

    // Unloads the driver and loads it again with another engine.
    tools::DriverSession& Restart(tools::EngineSource source);

    // Enables a device and its page bitmap.
    std::unique_ptr<tools::Device> Enable(const DeviceMode& mode);
    // Enables a device and starts a job and its first page on it.
    std::unique_ptr<tools::Device> StartPage(const DeviceMode& mode, const std::string& title = "title");

    // Returns the driver's instance of a device.
    static PDEV& InstanceOf(const tools::Device& device) {
        return *reinterpret_cast<PDEV*>(device.Instance());
    }

    // Returns the heap of the driver's allocations.
    HeapWatch& Heap() { return *heap_; }
    // Describes the blocks that the driver has not freed, except the two paths of the log, which it keeps.
    std::vector<std::string> LeftOnHeap() const;

    tools::Spooler& PrintSpooler() { return Session().PrintSpooler(); }
    tools::Spooler::Printer& Printer() { return Session().Printer(); }
    std::vector<std::string> LogLines() { return log_->TakeLines(); }

    static uint32_t Pixel(const SURFOBJ& surface, int32_t x, int32_t y);
    static void SetPixel(SURFOBJ& surface, int32_t x, int32_t y, uint32_t color);

    ScratchFolder installation;
    RecordingEngine engine;

  private:
    void Unload();

    std::optional<tools::DriverSession> session_;
    std::optional<HeapWatch> heap_;
    std::optional<LogCapture> log_;
};

// Returns the ink of the test profile, which differs at 600 dpi; white has none.
uint32_t ProfileColor(uint32_t color, bool at600Dpi);

}  // namespace orvex
