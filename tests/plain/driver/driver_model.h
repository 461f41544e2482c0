// A model of the whole driver, hook by hook: what each hook answers, what it asks of the print engine, what
// reaches the spooler, and which errors and information it logs. It is as plain as it can be, and knows
// nothing of the driver's own code. It depends on the world around the driver, which a test changes as the
// driver's real surroundings change.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "driver/config/device_mode.h"
#include "tests/plain/driver/job_colors.h"
#include "tests/plain/driver/label_list.h"
#include "tests/plain/driver/log.h"
#include "tests/plain/driver/spooled_output.h"
#include "tests/plain/driver/world.h"
#include "tests/plain/page_layout.h"

namespace orvex::plain {

using Record = std::vector<uint8_t>;

// A device of the driver, as far as its hooks depend on it.
struct ModelDevice {
    bool enabled = true;
    DeviceMode mode = {};
    uint32_t pageWidth = 0, pageLength = 0;  // 0.1 mm, after orientation
    int16_t orientation = 0;
    bool inJob = false, reset = false;
    uint32_t pageCount = 0;
    int32_t surfaceWidth = 0, surfaceHeight = 0;  // pixels
};

constexpr int kNoDevice = -1;

// Returns the pixels of a length.
uint32_t PixelsOf(int16_t dpi, uint32_t tenthsMm);

class DriverModel {
  public:
    // The world.
    Installation installation;
    LabelData labels;
    std::string printerName;
    EnginePart engine;
    bool libraryLoads = true;
    std::set<int> refusedWrites;  // by number of the write, from 1
    int writes = 0;
    bool makesPalettes = true, makesBitmaps = true, associates = true;

    // Everything that the driver does, in order: calls of the engine with their rows, answers of the output
    // callback, writes to the spooler. And the lines of its log.
    std::vector<std::string> events;
    Log log;

    // Returns whether the driver has the engine's library loaded; its folder is the current one then.
    bool Bound() const { return bound_; }
    const ModelDevice& Device(int device) const { return devices_[static_cast<size_t>(device)]; }
    size_t DeviceCount() const { return devices_.size(); }

    // The hooks. A device is the number that EnablePdev() returned; kNoDevice is an invalid one, or the
    // result of a refusal. A caller's record may be changed.
    int EnablePdev(Record* record);
    bool EnableSurface(int device);
    bool ResetPdev(int old, int fresh);
    void DisablePdev(int device);
    bool StartDoc(int device, int32_t width, int32_t height, const std::string& title, int jobId);
    bool StartPage(int device);
    bool SendPage(int device, const PageBits& page);
    bool EndDoc(int device);

  private:
    void LoadMask();
    void SetUpDefaults(DeviceMode& mode);
    void Merge(DeviceMode& mode, Record* record);
    void TakeLabelSize(DeviceMode& mode);

    bool StartJob(int device, int32_t width, int32_t height, const std::string& title);
    void EndEngineJob();
    void BeginFirstPage(const ModelDevice& device, const PageBits& page, const Layout& layout);
    void LogLayout(const ModelDevice& device, const Layout& layout);
    void LogOffset(const ModelDevice& device, const PageBits& page, const Layout& layout);
    void AskForResolution(bool at600Dpi);
    void SendToEngine(const ModelDevice& device, const PageBits& page, const Layout& layout);
    bool SendRows(const ModelDevice& device, const PageBits& page, const Layout& layout);

    // Calls the engine and takes what it outputs. Returns its status; a chunk that is refused makes it 0.
    uint32_t CallEngine(const std::string& name, const std::string& event);
    bool TakeOutput(const std::string& chunk);
    ModelDevice& At(int device) { return devices_[static_cast<size_t>(device)]; }

    std::vector<ModelDevice> devices_;
    int current_ = kNoDevice;  // device of the running job
    bool bound_ = false;
    uint64_t job_ = 0;
    uint32_t page_ = 0;  // number in the job
    SpooledOutput output_;
    std::optional<JobColors> colors_;
};

}  // namespace orvex::plain
