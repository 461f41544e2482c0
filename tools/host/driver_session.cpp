#include "tools/host/driver_session.h"

#include <algorithm>

#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace {

// Poison value, so that a test sees whether the hook cleared the array.
const HSURF kStalePattern = reinterpret_cast<HSURF>(uintptr_t{0x5A5A});

// Natively the sanitizers want aligned records. On Windows each record ends exactly at the guard page,
// whatever its size.
#ifdef _WIN32
constexpr size_t kRecordAlignment = 1;
#else
constexpr size_t kRecordAlignment = alignof(DEVMODEW);
#endif

}  // namespace

Device::~Device() {
    session_.DisableSurface(*this);
    session_.DisablePdev(*this);
}

SURFOBJ* Device::Surface() const {
    DrawnSurface* const surface = session_.Graphics().FindSurface(surface_);
    return surface == nullptr ? nullptr : &surface->Object();
}

DriverSession::DriverSession(const SessionSetup& setup)
    : driver_(setup.driver),
      shell_(setup.installation),
      engine_(setup.engine),
      printer_(spooler_.AddPrinter(setup.printerName, setup.driverName)),
      printerHandle_(spooler_.Open(setup.printerName)) {
    shell_.SetLanguage(setup.language);
    graphics_.Attach(driver_.Module());
    shell_.Attach(driver_.Module());
    engine_.Attach(driver_.Module());
    spooler_.Attach(driver_.Module());
}

DriverSession::~DriverSession() {
    spooler_.Close(printerHandle_);
}

void DriverSession::AttachProgram() {
    shell_.Attach(nullptr);
    spooler_.Attach(nullptr);
}

void DriverSession::SetSink(Spooler::Sink sink) {
    printer_.sink = [this, sink = std::move(sink)](std::string_view bytes) {
        if (sink(bytes)) return true;
        ++lostWrites_;
        return false;
    };
}

void DriverSession::RereadLogSwitch() {
    // DrvStartDoc reads the switch before anything else, and then refuses a surface without a device.
    SURFOBJ noDevice = {};
    WCHAR noTitle[] = {0};
    Hooks().startDoc(&noDevice, noTitle, 0);
}

std::unique_ptr<Device> DriverSession::EnablePdev(std::span<const uint8_t> deviceMode) {
    std::unique_ptr<Device> device(new Device(*this));
    device->deviceMode_ = std::make_unique<GuardedMemory>(deviceMode, kRecordAlignment);
    device->handle_ = graphics_.AddDevice();
    std::fill(std::begin(device->patterns_), std::end(device->patterns_), kStalePattern);
    std::u16string name = Wide(printer_.name);
    device->instance_ = Hooks().enablePdev(
        deviceMode.empty() ? nullptr : device->DeviceMode(), nullptr, HS_DDI_MAX, device->patterns_,
        sizeof(GDIINFO), reinterpret_cast<GDIINFO*>(device->capabilities_.Data()), sizeof(DEVINFO),
        reinterpret_cast<DEVINFO*>(device->information_.Data()), device->handle_, AsWchar(name),
        printerHandle_);
    graphics_.SetInstance(device->handle_, device->instance_);
    return device;
}

void DriverSession::CompletePdev(Device& device) {
    Hooks().completePdev(device.instance_, device.handle_);
}

bool DriverSession::EnableSurface(Device& device) {
    device.surface_ = Hooks().enableSurface(device.instance_);
    return device.surface_ != nullptr;
}

bool DriverSession::StartDoc(Device& device, const std::string& title, DWORD jobId) {
    std::u16string wideTitle = Wide(title);
    return Hooks().startDoc(device.Surface(), AsWchar(wideTitle), jobId) != FALSE;
}

bool DriverSession::StartPage(Device& device) {
    return Hooks().startPage(device.Surface()) != FALSE;
}

bool DriverSession::SendPage(Device& device) {
    return Hooks().sendPage(device.Surface()) != FALSE;
}

bool DriverSession::EndDoc(Device& device, FLONG flags) {
    return Hooks().endDoc(device.Surface(), flags) != FALSE;
}

void DriverSession::DisableSurface(Device& device) {
    if (device.surface_ == nullptr) return;
    Hooks().disableSurface(device.instance_);
    device.surface_ = nullptr;
}

void DriverSession::DisablePdev(Device& device) {
    if (device.handle_ == nullptr) return;
    if (device.instance_ != nullptr) Hooks().disablePdev(device.instance_);
    graphics_.ReleasePalette(device.Information().hpalDefault);
    graphics_.RemoveDevice(device.handle_);
    device.instance_ = nullptr;
    device.handle_ = nullptr;
}

bool DriverSession::ResetPdev(Device& old, Device& fresh) {
    return Hooks().resetPdev(old.instance_, fresh.instance_) != FALSE;
}

bool DriverSession::ResetDevice(std::unique_ptr<Device>& device, const JobPlan& plan,
                                std::span<const uint8_t> deviceMode) {
    std::unique_ptr<Device> fresh = EnablePdev(deviceMode);
    if (fresh->Instance() == nullptr) return false;
    CompletePdev(*fresh);
    if (!ResetPdev(*device, *fresh) || !EnableSurface(*fresh)) return false;
    Retire(*device);
    device = std::move(fresh);
    if (plan.onDevice) plan.onDevice(*device);
    return StartDoc(*device, plan.title, plan.jobId);
}

void DriverSession::Retire(Device& device) {
    recordsIntact_ = recordsIntact_ && device.Intact();
    DisableSurface(device);
    DisablePdev(device);
}

JobOutcome DriverSession::RunJob(const JobPlan& plan) {
    std::unique_ptr<Device> device = EnablePdev(plan.deviceMode);
    if (device->Instance() == nullptr) return {.failure = "the driver refused the device (DrvEnablePDEV)"};
    CompletePdev(*device);
    if (!EnableSurface(*device)) return {.failure = "the driver made no page bitmap (DrvEnableSurface)"};
    const uint64_t refusals = engine_.Books().refusalCount;
    recordsIntact_ = true;
    if (plan.onDevice) plan.onDevice(*device);
    JobOutcome outcome = RunDocument(device, plan);
    Retire(*device);
    if (outcome.Printed())
        outcome.failure =
            recordsIntact_ ? Trouble(refusals) : "the driver wrote around a record that it was given";
    return outcome;
}

JobOutcome DriverSession::RunDocument(std::unique_ptr<Device>& device, const JobPlan& plan) {
    const uint64_t refusals = engine_.Books().refusalCount;
    JobOutcome outcome;
    const auto failed = [&](bool accepted, const char* note) {
        outcome.failure = Trouble(refusals);
        if (!accepted) outcome.failure = note + (outcome.failure.empty() ? "" : ": " + outcome.failure);
        return !outcome.failure.empty();
    };
    // If the driver accepted the job and only the host saw a failure, the driver must end it.
    if (failed(StartDoc(*device, plan.title, plan.jobId), "the driver refused the job (DrvStartDoc)")) {
        if (engine_.Bound()) EndDoc(*device, ED_ABORTDOC);
        return outcome;
    }
    try {
        for (size_t page = 0; page < plan.pages; ++page) {
            const std::span<const uint8_t> fresh = plan.reset ? plan.reset(page) : std::span<const uint8_t>();
            if (!fresh.empty() && failed(ResetDevice(device, plan, fresh),
                                         "the driver refused to reset the device (DrvResetPDEV)"))
                break;
            if (failed(StartPage(*device), "the driver refused the page (DrvStartPage)")) break;
            if (plan.draw) plan.draw(page, *device->Surface());
            if (failed(SendPage(*device), "the driver did not send the page (DrvSendPage)")) break;
            ++outcome.pagesPrinted;
        }
    } catch (...) {
        EndDoc(*device, ED_ABORTDOC);
        throw;
    }
    const std::string pageFailure = outcome.failure;
    const bool ended = EndDoc(*device, pageFailure.empty() ? 0 : ED_ABORTDOC);
    if (pageFailure.empty()) {
        failed(ended, "the driver did not end the job (DrvEndDoc)");
    } else {
        outcome.failure = pageFailure;
    }
    return outcome;
}

std::string DriverSession::Trouble(uint64_t refusalsBefore) const {
    if (lostWrites_ > 0) return "a write to the spooler failed";
    if (!graphics_.Complaints().empty()) return graphics_.Complaints().front();
    const EngineBooks& books = engine_.Books();
    if (books.refusalCount == refusalsBefore) return {};
    return refusalsBefore < books.refusals.size() ? books.refusals[refusalsBefore]
                                                  : "the print engine refused a call";
}

}  // namespace orvex::tools
