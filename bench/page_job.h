// Jobs of the driver with a print engine that does nothing, to time DrvSendPage by itself.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "bench/bench_page.h"
#include "driver/config/device_mode.h"
#include "tests/plain/page_order.h"
#include "tests/plain/plain_rows.h"
#include "tools/host/driver_session.h"

namespace orvex::bench {

// The settings that change how pixels are read and printed.
struct PageSettings {
    RowOrder order = {};
    bool kws = false;
    int32_t colorMode = kColorModeColor;
};

// Returns an engine that accepts every call and does nothing.
PrintEngine IdleEngine();

// Called for each row that the idle engine gets, with the row's number from 0 and its pixels.
using RowObserver = std::function<void(int32_t row, const uint32_t* pixels)>;

// The loaded driver, with one profile for all jobs. A process can have one at a time.
class BenchDriver {
  public:
    // `profile` is a file name in the installation's profiles folder.
    BenchDriver(const std::filesystem::path& installation, const std::string& profile);

    tools::DriverSession& Session() { return session_; }
    DeviceMode Mode(const PageSize& size, const PageSettings& settings) const;

  private:
    std::string profile_;
    tools::DriverSession session_;
};

// A started job that sends `page` any number of times. The page stays the caller's.
class PageJob {
  public:
    // Throws DriverError if a hook refuses.
    PageJob(BenchDriver& driver, const BenchPage& page, const PageSize& size, const PageSettings& settings);
    ~PageJob();
    PageJob(const PageJob&) = delete;
    PageJob& operator=(const PageJob&) = delete;

    // Calls DrvSendPage once. Throws DriverError if it refuses.
    void Send(RowObserver observer = nullptr);

  private:
    BenchDriver& driver_;
    std::unique_ptr<tools::Device> device_;
    SURFOBJ surface_ = {};
};

}  // namespace orvex::bench
