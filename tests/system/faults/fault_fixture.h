// A small job of three pages with everything a job can have: labels to import and to look up, a profile,
// color adjustment, a job header with a thumbnail, and a device reset after the first page. It calls hook by
// hook as a graphics engine does, stops where a hook refuses, and watches all calls of the driver.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/kit/driver_fixture.h"
#include "tests/system/faults/call_watch.h"

namespace orvex {

// The inputs of the job. A failure often has the driver print as if one of them were missing, and then the
// job must equal one that is printed without that input.
enum class JobInputs {
    kAll,
    kNoThumbnail,   // settings.inf asks for none
    kNoChunkPages,  // settings.inf does not show them
    kNoLabels,      // no media.inf
    kNoProfile,     // no file of the name in the device mode
    kNoColors,      // that file ends where its colors should begin
    kNoFirstMode,   // the first device is enabled without a device mode
    kNoSecondMode,  // the same for the second, which DrvResetPDEV gets
    kNoFirstPage,   // DrvSendPage is not called for it
    kNoSecondPage,
    kNoThirdPage,
    kCount,
};

// One hook of a job: its answer, what the printer got from it, and what it logged.
struct HookRecord {
    std::string name;  // with its number in the job: "DrvSendPage 2"
    bool accepted = true;
    DWORD lastError = 0;  // 0 before the hook
    std::string output;
    std::vector<std::string> log;  // message by message, without what differs from run to run

    bool SameAs(const HookRecord& other) const {
        return accepted == other.accepted && output == other.output && log == other.log;
    }
};

struct JobRecord {
    std::vector<HookRecord> hooks;
    std::vector<WatchedCall> calls;

    bool SameAs(const JobRecord& other) const {
        return std::equal(hooks.begin(), hooks.end(), other.hooks.begin(), other.hooks.end(),
                          [](const HookRecord& a, const HookRecord& b) { return a.SameAs(b); });
    }
};

class FaultTest : public DriverTest {
  protected:
    FaultTest();

    // Loads the driver again, so that it repeats what it does once in a process. Natively the driver is part
    // of the program and has done it.
    void Reload();

    // Chooses what the next jobs are printed from.
    void SetInputs(JobInputs inputs);

    // Prints the job on a printer without data. The call of that number fails.
    JobRecord Run(size_t failingCall = CallWatch::kNone);

    // Describes whatever the driver should have given back but did not: memory, handles, surfaces, the print
    // engine's library, the current directory. Gives the last two back.
    std::vector<std::string> LeftBehind();

    CallWatch& Watch() { return *watch_; }

  private:
    bool Hook(const std::string& name, const std::function<bool()>& call);
    std::unique_ptr<tools::Device> MakeDevice();
    std::unique_ptr<tools::Device> ResetDevice(std::unique_ptr<tools::Device> old);
    void CloseDevice(std::unique_ptr<tools::Device> device);
    void PrintPages(std::unique_ptr<tools::Device>* device);

    JobInputs inputs_ = JobInputs::kAll;
    std::filesystem::path directory_;  // before any job
    size_t misuses_ = 0;               // already reported
    size_t complaints_ = 0;
    std::optional<CallWatch> watch_;
    JobRecord record_;
    std::map<std::string, int> hookCalls_;
};

}  // namespace orvex
