// The driver and its model in the same world: every hook is called on both, and whatever can be seen of the
// driver must be what the model says.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/kit/driver_fixture.h"
#include "tests/plain/driver/driver_model.h"
#include "tests/system/corrupted_record.h"
#include "tests/system/random_jobs/scripted_engine.h"

namespace orvex {

class DriverPair : public DriverTest {
  protected:
    DriverPair();
    ~DriverPair() override;

    plain::DriverModel model;

    // Make the driver's surroundings those of the model: its files, and a printer with its labels; its
    // log's switch; its engine and the writes that fail, for a new job.
    void InstallFiles();
    void WriteMask();
    void BeginJob(const plain::EngineScript& script);

    // Call a hook on both. Return the model's result.
    int EnablePdev(const std::optional<Record>& record);
    bool EnableSurface(int device);
    bool ResetPdev(int old, int fresh);
    void DisablePdev(int device);
    // An invalid instance is given without a surface, or with a surface that has no device.
    bool StartDoc(int device, const plain::PageBits& page, const std::string& title, int jobId);
    bool StartPage(int device, const plain::PageBits& page);
    bool SendPage(int device, const plain::PageBits& page);
    bool EndDoc(int device, const plain::PageBits& page);

    // The large profiles, which are moved in and out of the installation.
    std::map<std::string, plain::SparseFile> large;

  private:
    // Calls a hook of a job, which returns a result and needs a valid device.
    template <typename Hook>
    bool CallWithSurface(const char* name, int device, const plain::PageBits& page, bool erases,
                         bool expected, Hook hook);
    SURFOBJ SurfaceOf(int device, const plain::PageBits& page) const;
    // Return the pixels of a device's own bitmap that a page covers.
    void PoisonBits(int device, const plain::PageBits& page);
    void ExpectWhiteBits(int device, const plain::PageBits& page);

    // Compare what can be seen after a hook.
    void ExpectSame(const char* hook);
    void ExpectSameEvents();
    void ExpectSameLog(const char* hook);
    void ExpectSameDevices();
    void ExpectSameRecord(const DeviceMode& actual, const DeviceMode& expected);

    std::filesystem::path PathOf(const std::string& profile) const;

    ScratchFolder aside_;
    ScriptedEngine scripted_;
    std::vector<std::unique_ptr<tools::Device>> devices_;  // by the model's numbers
    uint32_t maskBefore_ = 0;                              // of the hook that was called last
    const std::filesystem::path directoryBefore_ = std::filesystem::current_path();
    int writes_ = 0;
};

}  // namespace orvex
