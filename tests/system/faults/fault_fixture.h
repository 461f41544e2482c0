// A job of three pages, small but with everything a job can have: labels imported and looked up, a profile,
// color adjustment, a job header with a thumbnail, and a device that is reset after the first page. It is
// driven hook by hook as a graphics engine does, stopping where a hook refuses, and all the driver's calls
// are watched.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/driver/driver_fixture.h"
#include "tests/system/faults/call_watch.h"
#include "tests/system/faults/job_inputs.h"

namespace orvex {

using namespace tools;
// How a hook of the job answered.
struct HookAnswer {
    std::string hook;  // with its number in the job: "DrvSendPage 2"
    bool accepted;
    DWORD lastError;  // 0 was there before
};

// What a job left behind.
struct JobRecord {
    std::vector<HookAnswer> answers;
    std::string written;
    std::vector<std::string> log;  // message by message; what differs from run to run is taken out
    std::vector<WatchedCall> calls;

    // The hooks that refused.
    std::vector<std::string> Refusals() const;
};

class FaultTest : public DriverTest {
  protected:
    FaultTest();

    // Loads the driver anew, so that it does again what a process does only once. Natively the driver is a
    // part of the program, and has done it.
    void Reload();

    // What the next jobs are printed from.
    void SetInputs(JobInputs inputs);

    // Prints the job on a printer without data. The call of that number fails.
    JobRecord Run(size_t failingCall = CallWatch::kNone);

    // Whatever the driver should have given back but did not, in words: memory, handles, surfaces, the print
    // engine's library, the current directory.
    std::vector<std::string> LeftBehind();

    CallWatch& Watch() { return *watch_; }
    // The name of the log's file, which calls for it have as their subject.
    std::string LogFileName();

  private:
    bool Hook(const std::string& name, const std::function<bool()>& call);
    std::unique_ptr<Device> MakeDevice();
    std::unique_ptr<Device> ResetDevice(std::unique_ptr<Device> old);
    void CloseDevice(std::unique_ptr<Device> device);
    void PrintPages(std::unique_ptr<Device>* device);

    JobInputs inputs_ = JobInputs::kAll;
    std::filesystem::path directory_;  // before any job
    size_t misuses_ = 0;               // told already
    size_t complaints_ = 0;
    std::optional<CallWatch> watch_;
    JobRecord record_;
    std::map<std::string, int> hookCalls_;
};

}  // namespace orvex
