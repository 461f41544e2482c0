// A job of the driver with a print engine that does nothing: what DrvSendPage itself costs.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "bench/bench_page.h"
#include "driver/config/device_mode.h"
#include "tools/host/driver_session.h"

namespace orvex::bench {

using namespace tools;
// How a page lies, and the settings that change what is done with its pixels.
struct PageSettings {
    bool landscape = false;
    bool rotate180 = false;
    bool mirrorImage = false;
    bool kws = false;
    int32_t colorMode = kColorModeColor;
};

// The engine that takes everything and does nothing.
PrintEngine IdleEngine();

// Sees each row that the idle engine gets, while one is set: the row's number from 0 and its pixels.
using RowObserver = std::function<void(int32_t row, const uint32_t* pixels)>;

// The driver loaded, with the installation's profile for every job. One at a time in a process.
class BenchDriver {
  public:
    // `profile` is a file's name in the installation's folder of profiles.
    BenchDriver(const std::filesystem::path& installation, const std::string& profile);

    DriverSession& Session() { return session_; }
    DeviceMode Mode(const PageSize& size, const PageSettings& settings) const;

  private:
    std::string profile_;
    DriverSession session_;
};

// A begun job whose page is `page`, in the caller's memory, sent as often as wanted.
class PageJob {
  public:
    // Throws DriverError when a hook refuses.
    PageJob(BenchDriver& driver, const BenchPage& page, const PageSize& size, const PageSettings& settings);
    ~PageJob();
    PageJob(const PageJob&) = delete;
    PageJob& operator=(const PageJob&) = delete;

    // One call of DrvSendPage.
    void Send();
    // The same with the rows shown.
    void Send(RowObserver observer);

  private:
    BenchDriver& driver_;
    std::unique_ptr<Device> device_;
    SURFOBJ surface_ = {};
};

}  // namespace orvex::bench
