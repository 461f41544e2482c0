#include "bench/page_job.h"

#include <cstring>
#include <vector>

#include "tests/plain/device_mode.h"
#include "tools/host/driver_library.h"

namespace orvex::bench {

using namespace tools;

namespace {

constexpr uint64_t kJob = 1;

RowObserver rowObserver;
int32_t rowsTaken = 0;

uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback, void*, uint32_t, uint32_t) {
    return kJob;
}

uint32_t HPCRLIB_CALL Done(uint64_t) {
    return kEngineSuccess;
}

uint32_t HPCRLIB_CALL PageStart(uint64_t, uint32_t, uint32_t) {
    return kEngineSuccess;
}

uint32_t HPCRLIB_CALL BlockStart(uint64_t, uint32_t, uint32_t, uint32_t, uint32_t) {
    rowsTaken = 0;
    return kEngineSuccess;
}

uint32_t HPCRLIB_CALL Row(uint64_t, const uint32_t* row) {
    if (rowObserver) rowObserver(rowsTaken, row);
    ++rowsTaken;
    return kEngineSuccess;
}

SessionSetup SetupFor(const std::filesystem::path& installation) {
    SessionSetup setup;
    setup.installation = installation;
    setup.engine = IdleEngine();
    return setup;
}

void Require(bool done, const char* hook) {
    if (!done) throw DriverError(std::string(hook) + " refused");
}

}  // namespace

PrintEngine IdleEngine() {
    PrintEngine engine;
    engine.HPCRLIB_JobStart = &JobStart;
    engine.HPCRLIB_JobEnd = &Done;
    engine.HPCRLIB_PageStart = &PageStart;
    engine.HPCRLIB_PageEnd = &Done;
    engine.HPCRLIB_RasterBlockStart = &BlockStart;
    engine.HPCRLIB_RasterRow = &Row;
    engine.HPCRLIB_RasterBlockEnd = &Done;
    return engine;
}

BenchDriver::BenchDriver(const std::filesystem::path& installation, const std::string& profile)
    : profile_(profile), session_(SetupFor(installation)) {}

DeviceMode BenchDriver::Mode(const PageSize& size, const PageSettings& settings) const {
    DeviceMode mode = plain::ValidDeviceMode();
    mode.pub.dmOrientation = settings.order.landscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    mode.pub.dmPaperSize = kPaperCustom;
    mode.pub.dmPaperWidth = size.widthTenthsMm;
    mode.pub.dmPaperLength = size.heightTenthsMm;
    mode.pub.dmPrintQuality = size.dpi;
    mode.priv.rotate180 = settings.order.rotate180;
    mode.priv.mirrorImage = settings.order.mirrorImage;
    mode.priv.kws = settings.kws;
    mode.priv.colorMode = settings.colorMode;
    for (size_t i = 0; i < profile_.size(); ++i) {
        mode.priv.colorProfile[i] = static_cast<WCHAR>(profile_[i]);
    }
    return mode;
}

PageJob::PageJob(BenchDriver& driver, const BenchPage& page, const PageSize& size,
                 const PageSettings& settings)
    : driver_(driver) {
    const DeviceMode mode = driver.Mode(size, settings);
    std::vector<uint8_t> bytes(sizeof mode);
    memcpy(bytes.data(), &mode, sizeof mode);
    device_ = driver.Session().EnablePdev(bytes);
    Require(device_->Instance() != nullptr, "DrvEnablePDEV");
    driver.Session().CompletePdev(*device_);

    surface_.dhpdev = device_->Instance();
    surface_.hdev = device_->Handle();
    surface_.sizlBitmap = {page.width, page.height};
    surface_.cjBits = static_cast<ULONG>(page.Bytes());
    surface_.pvBits = surface_.pvScan0 = const_cast<uint32_t*>(page.pixels.data());
    surface_.lDelta = page.width * 4;
    surface_.iBitmapFormat = BMF_32BPP;
    surface_.fjBitmap = BMF_TOPDOWN;

    const DriverHooks& hooks = driver.Session().Hooks();
    WCHAR title[] = {'b', 'e', 'n', 'c', 'h', 0};
    Require(hooks.startDoc(&surface_, title, 1), "DrvStartDoc");
    Require(hooks.startPage(&surface_), "DrvStartPage");
}

PageJob::~PageJob() {
    driver_.Session().Hooks().endDoc(&surface_, 0);
}

void PageJob::Send(RowObserver observer) {
    rowObserver = std::move(observer);
    Require(driver_.Session().Hooks().sendPage(&surface_), "DrvSendPage");
    rowObserver = nullptr;
}

}  // namespace orvex::bench
