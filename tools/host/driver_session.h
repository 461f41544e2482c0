// The world that a job runs in: the driver, surrounded by graphics engine, spooler, shell and print engine.
// Each hook can be called by itself, so that a test can drive a job step by step; RunJob() calls them all in
// the order of a job.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/windows.h"
#include "tools/host/driver_library.h"
#include "tools/host/engine_library.h"
#include "tools/host/graphics_engine.h"
#include "tools/host/guarded_memory.h"
#include "tools/host/shell_answers.h"
#include "tools/host/spooler.h"

namespace orvex::tools {

struct SessionSetup {
    std::filesystem::path driver = DefaultDriverFile();  // ignored natively
    std::filesystem::path installation = {};
    EngineSource engine = {};
    std::optional<std::string> language = {};  // abbreviation, such as "DEU"; empty: the machine's
    std::string printerName = "Orvex Series";  // UTF-8
    std::string driverName = "Orvex Series";   // UTF-8
};

class DriverSession;

// One device of the graphics engine: the driver's instance and all records that were exchanged for it. Its
// destruction disables whatever is still enabled.
class Device {
  public:
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    DHPDEV Instance() const { return instance_; }  // null when the driver refused
    HDEV Handle() const { return handle_; }
    HSURF SurfaceHandle() const { return surface_; }
    // Returns the page's surface, valid until it is disabled; null if there is none.
    SURFOBJ* Surface() const;

    // Return the records as the driver left them. The device mode is the copy that was passed to the driver,
    // which may have written to it.
    DEVMODEW* DeviceMode() const { return reinterpret_cast<DEVMODEW*>(deviceMode_->Data()); }
    const GDIINFO& Capabilities() const { return *reinterpret_cast<const GDIINFO*>(capabilities_.Data()); }
    const DEVINFO& Information() const { return *reinterpret_cast<const DEVINFO*>(information_.Data()); }
    std::span<const HSURF> Patterns() const { return patterns_; }

    // Returns whether the memory around the records that were passed to the driver is still untouched.
    bool Intact() const { return deviceMode_->Intact() && capabilities_.Intact() && information_.Intact(); }

  private:
    friend class DriverSession;
    explicit Device(DriverSession& session) : session_(session) {}

    DriverSession& session_;
    std::unique_ptr<GuardedMemory> deviceMode_;
    GuardedMemory capabilities_{sizeof(GDIINFO)};
    GuardedMemory information_{sizeof(DEVINFO)};
    HSURF patterns_[HS_DDI_MAX] = {};
    HDEV handle_ = nullptr;
    DHPDEV instance_ = nullptr;
    HSURF surface_ = nullptr;
};

struct JobPlan {
    std::span<const uint8_t> deviceMode = {};  // empty: null is passed
    std::string title = {};                    // UTF-8
    DWORD jobId = 1;
    size_t pages = 1;
    // Draws a page, counted from 0, on the white surface. An exception ends the job and is rethrown.
    std::function<void(size_t page, SURFOBJ& surface)> draw = {};
    // Returns the device mode that the device is reset to before a page; empty if it stays as it is.
    std::function<std::span<const uint8_t>(size_t page)> reset = {};
    // Takes each device that pages are drawn for, before the first of them.
    std::function<void(const Device& device)> onDevice = {};
};

struct JobOutcome {
    size_t pagesPrinted = 0;
    std::string failure = {};  // in words; empty if the job printed

    bool Printed() const { return failure.empty(); }
};

class DriverSession {
  public:
    // Loads the driver, surrounds it and opens the printer. Throws DriverError or std::runtime_error.
    explicit DriverSession(const SessionSetup& setup);
    ~DriverSession();
    DriverSession(const DriverSession&) = delete;
    DriverSession& operator=(const DriverSession&) = delete;

    const DriverLibrary& Driver() const { return driver_; }
    const DriverHooks& Hooks() const { return driver_.Hooks(); }
    GraphicsEngine& Graphics() { return graphics_; }
    EngineLibrary& Engine() { return engine_; }
    ShellAnswers& Shell() { return shell_; }
    Spooler& PrintSpooler() { return spooler_; }
    // Return the spooler's only printer, and the handle that is passed to the driver.
    Spooler::Printer& Printer() { return printer_; }
    HANDLE PrinterHandle() const { return printerHandle_; }

    // Sends the printer's further bytes to `sink`. If it refuses a write, the job fails.
    void SetSink(Spooler::Sink sink);

    // Answers this program's own calls to spooler and shell like the driver's.
    void AttachProgram();

    // Makes the driver read its log's switch now. The driver itself reads it only in the middle of setting up
    // a device, so that the trace would start there.
    void RereadLogSwitch();

    // Call the hooks one by one. The instance of a device that the driver refused is null. An empty device
    // mode is passed as null.
    std::unique_ptr<Device> EnablePdev(std::span<const uint8_t> deviceMode);
    void CompletePdev(Device& device);
    bool EnableSurface(Device& device);
    bool StartDoc(Device& device, const std::string& title, DWORD jobId = 1);
    bool StartPage(Device& device);
    bool SendPage(Device& device);
    bool EndDoc(Device& device, FLONG flags = 0);
    void DisableSurface(Device& device);
    void DisablePdev(Device& device);
    bool ResetPdev(Device& old, Device& fresh);

    // Runs a whole job. Stops at the first hook that refuses, print engine call that fails or lost write.
    JobOutcome RunJob(const JobPlan& plan);

  private:
    // Returns in words what spooler, graphics engine or print engine had to refuse; of the print engine's
    // refusals only those after the first `refusalsBefore`. Empty if there is nothing.
    std::string Trouble(uint64_t refusalsBefore) const;
    JobOutcome RunDocument(std::unique_ptr<Device>& device, const JobPlan& plan);
    // Resets the device of a running job as the graphics engine does: a new device takes over from the old
    // one, which is disabled. Returns false, with a device that can still end the job, if the driver refuses.
    bool ResetDevice(std::unique_ptr<Device>& device, const JobPlan& plan,
                     std::span<const uint8_t> deviceMode);
    void Retire(Device& device);

    // The driver is constructed first and destroyed last, since all others patch its imports.
    DriverLibrary driver_;
    GraphicsEngine graphics_;
    ShellAnswers shell_;
    EngineLibrary engine_;
    Spooler spooler_;
    Spooler::Printer& printer_;
    HANDLE printerHandle_;
    uint64_t lostWrites_ = 0;
    bool recordsIntact_ = true;  // of devices that were retired in the running job
};

}  // namespace orvex::tools
