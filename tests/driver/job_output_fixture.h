// A job whose output the test writes itself, in the print engine's place.
#pragma once

#include "driver/device_instance.h"
#include "tests/kit/driver_fixture.h"

namespace orvex {

class JobOutputTest : public DriverTest {
  protected:
    ~JobOutputTest() override {
        if (device_) Session().EndDoc(*device_);
    }

    // Starts a job and its first page. From then on the engine's output callback can be called.
    void Begin(const DeviceMode& mode = Mode(), const std::string& title = "My job") {
        device_ = StartPage(mode, title);
    }
    tools::Device& Current() { return *device_; }

    // Hands a chunk to the callback and returns what it wrote; counts the writes.
    std::string Written(std::string_view chunk, int32_t result = 1) {
        Printer().written.clear();
        const int before = PrintSpooler().Calls("WritePrinter");
        EXPECT_EQ(engine.Output(chunk), result);
        writes = PrintSpooler().Calls("WritePrinter") - before;
        return Printer().written;
    }

    // Sends a page that calls `inPage` where the engine would output its resolution command.
    void SendPage(std::function<void()> inPage) {
        engine.onPageStart = std::move(inPage);
        EXPECT_TRUE(Session().SendPage(Current()));
        engine.onPageStart = nullptr;
    }

    int writes = 0;

  private:
    std::unique_ptr<tools::Device> device_;
};

}  // namespace orvex
