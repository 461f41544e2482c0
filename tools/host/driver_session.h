// The driver with graphics engine, spooler, shell and print engine put around it: what a job runs in. Every
// hook can be called by itself, so that a test can drive a job step by step; RunJob() calls them all in the
// order of a job.
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
    std::filesystem::path driver = DefaultDriverFile();  // plays no part natively
    std::filesystem::path installation = {};
    EngineSource engine = {};
    std::optional<std::string> language = {};  // abbreviation, such as "DEU"; none: the machine's
    std::string printerName = "Orvex Series";  // UTF-8
    std::string driverName = "Orvex Series";   // UTF-8
};

class DriverSession;

// One device of the graphics engine: the driver's instance and all that was exchanged for it. Whatever of it
// is still there is disabled when the record goes.
class Device {
  public:
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    DHPDEV Instance() const { return instance_; }  // null when the driver refused
    HDEV Handle() const { return handle_; }
    HSURF SurfaceHandle() const { return surface_; }
    // The page; null without a surface. Valid until the surface is disabled.
    SURFOBJ* Surface() const;

    // As the driver left them. The device mode is the copy that the driver was given, and may have written
    // to.
    DEVMODEW* DeviceMode() const { return reinterpret_cast<DEVMODEW*>(deviceMode_->Data()); }
    const GDIINFO& Capabilities() const { return *reinterpret_cast<const GDIINFO*>(capabilities_.Data()); }
    const DEVINFO& Information() const { return *reinterpret_cast<const DEVINFO*>(information_.Data()); }
    std::span<const HSURF> Patterns() const { return patterns_; }

    // Whether the memory around the records that were given to the driver is still untouched.
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
    std::span<const uint8_t> deviceMode = {};  // empty: none is given
    std::string title = {};                    // UTF-8
    DWORD jobId = 1;
    size_t pages = 1;
    // Draws a page, counted from 0, onto the white surface. An exception ends the job and is passed on.
    std::function<void(size_t page, SURFOBJ& surface)> draw = {};
};

struct JobOutcome {
    size_t pagesPrinted = 0;
    std::string failure = {};  // in words; empty when the job printed

    bool Printed() const { return failure.empty(); }
};

class DriverSession {
  public:
    // Loads the driver, stands all around it and opens the printer. Throws DriverError or std::runtime_error.
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
    // The one printer of the spooler, and the handle under which the driver knows it.
    Spooler::Printer& Printer() { return printer_; }
    HANDLE PrinterHandle() const { return printerHandle_; }

    // Where the printer's bytes go from now on. A write that it refuses fails, and fails the job.
    void SetSink(Spooler::Sink sink);

    // Lets this program's own calls of the spooler and the shell be answered as the driver's are.
    void AttachProgram();

    // Makes the driver read its log's switch now. By itself it does so only in the midst of setting a device
    // up, and the trace would begin there.
    void RereadLogSwitch();

    // The hooks, one by one. A device whose instance is null was refused. Without a device mode the driver
    // gets none.
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

    // Runs a whole job. It ends at the first hook that refuses, engine call that fails or write that is lost.
    JobOutcome RunJob(const JobPlan& plan);

  private:
    // What the print engine, the graphics engine or the spooler had to refuse since the count of the print
    // engine's refusals was `refusalsBefore`, in words; empty when nothing.
    std::string Trouble(uint64_t refusalsBefore) const;
    JobOutcome RunDocument(Device& device, const JobPlan& plan);

    // The driver comes first and goes last: all others patch its imports.
    DriverLibrary driver_;
    GraphicsEngine graphics_;
    ShellAnswers shell_;
    EngineLibrary engine_;
    Spooler spooler_;
    Spooler::Printer& printer_;
    HANDLE printerHandle_;
    uint64_t lostWrites_ = 0;
};

}  // namespace orvex::tools
