// The seven entry points of the stand-in hpcrlib.dll, and the running jobs that their callers know by
// handles. No exception leaves an entry point.
#include "engine/hpcrlib.h"

#include <map>
#include <memory>
#include <mutex>

#include "engine/engine_job.h"
#include "engine/print_stream.h"

#ifdef _WIN32
namespace __gnu_cxx {
void __freeres();
}
#endif

#if defined(_WIN32)
#define HPCRLIB_EXPORT  // hpcrlib.def exports them undecorated
#else
#define HPCRLIB_EXPORT __attribute__((visibility("default")))
#endif

namespace orvex {

using namespace engine;

namespace {

constexpr uint32_t kFailure = 0;

#ifdef _WIN32
// Frees the C++ runtime's reserve of memory for exceptions. The library has a runtime of its own, and the
// driver loads it once for each job: the reserves would pile up.
struct RuntimeReserve {
    ~RuntimeReserve() { __gnu_cxx::__freeres(); }
} runtimeReserve;
#endif

struct JobEntry {
    std::unique_ptr<EngineJob> job;
    bool inCall = false;
};

// The lock is not held while a job works: its output callback may take long, or start another job.
struct JobTable {
    std::mutex lock;
    std::map<uint64_t, JobEntry> jobs;
    uint64_t lastHandle = 0;
};

// At namespace scope, since the C++ runtime guards the first use of a static of a function with a lock, whose
// handle would stay open each time that the driver unloads the library.
JobTable jobTable;

// Adds a job and returns its handle, which is never 0 and never used twice, so a stale handle is always
// refused.
uint64_t AddJob(std::unique_ptr<EngineJob> job) {
    const std::lock_guard guard(jobTable.lock);
    jobTable.jobs[++jobTable.lastHandle].job = std::move(job);
    return jobTable.lastHandle;
}

// The fate of a job after a call.
enum class Afterwards { kKeep, kRemove };

// Reserves a job for the duration of one call. A job that is in a call already, on another thread or further
// up this one's stack, is not found.
class JobInCall {
  public:
    JobInCall(uint64_t handle, Afterwards afterwards) : handle_(handle), afterwards_(afterwards) {
        const std::lock_guard guard(jobTable.lock);
        const auto found = jobTable.jobs.find(handle);
        if (found == jobTable.jobs.end() || found->second.inCall) return;
        found->second.inCall = true;
        job_ = found->second.job.get();
    }
    ~JobInCall() {
        if (!job_) return;
        const std::lock_guard guard(jobTable.lock);
        if (afterwards_ == Afterwards::kRemove) {
            jobTable.jobs.erase(handle_);
        } else {
            jobTable.jobs.find(handle_)->second.inCall = false;
        }
    }
    JobInCall(const JobInCall&) = delete;
    JobInCall& operator=(const JobInCall&) = delete;

    // Returns the job, or null if it was not found.
    EngineJob* Get() const { return job_; }

  private:
    uint64_t handle_;
    Afterwards afterwards_;
    EngineJob* job_ = nullptr;
};

// Runs one step of a job. An exception means out of memory; it fails the step and ends the job's output.
template <typename Step>
uint32_t RunStep(uint64_t handle, Step step, Afterwards afterwards = Afterwards::kKeep) {
    const JobInCall call(handle, afterwards);
    if (!call.Get()) return kFailure;
    try {
        return step(*call.Get()) ? kEngineSuccess : kFailure;
    } catch (...) {
        call.Get()->Break();
        return kFailure;
    }
}

}  // namespace

extern "C" {

HPCRLIB_EXPORT uint64_t HPCRLIB_CALL HPCRLIB_JobStart(HPCRLIB_OutputCallback output, void* context,
                                                      uint32_t resolutionMode, uint32_t reserved) {
    if (!output || resolutionMode >= print_stream::kResolutionModes || reserved != 0) return 0;
    try {
        return AddJob(std::make_unique<EngineJob>(output, context, resolutionMode));
    } catch (...) {
        return 0;
    }
}

HPCRLIB_EXPORT uint32_t HPCRLIB_CALL HPCRLIB_JobEnd(uint64_t job) {
    return RunStep(
        job, [](EngineJob& step) { return step.End(); }, Afterwards::kRemove);
}

HPCRLIB_EXPORT uint32_t HPCRLIB_CALL HPCRLIB_PageStart(uint64_t job, uint32_t width, uint32_t length) {
    return RunStep(job, [=](EngineJob& step) { return step.StartPage(width, length); });
}

HPCRLIB_EXPORT uint32_t HPCRLIB_CALL HPCRLIB_PageEnd(uint64_t job) {
    return RunStep(job, [](EngineJob& step) { return step.EndPage(); });
}

HPCRLIB_EXPORT uint32_t HPCRLIB_CALL HPCRLIB_RasterBlockStart(uint64_t job, uint32_t reserved, uint32_t top,
                                                              uint32_t rowWidth, uint32_t rows) {
    return RunStep(job,
                   [=](EngineJob& step) { return reserved == 0 && step.StartBlock(top, rowWidth, rows); });
}

HPCRLIB_EXPORT uint32_t HPCRLIB_CALL HPCRLIB_RasterRow(uint64_t job, const uint32_t* row) {
    return RunStep(job, [=](EngineJob& step) { return step.PutRow(row); });
}

HPCRLIB_EXPORT uint32_t HPCRLIB_CALL HPCRLIB_RasterBlockEnd(uint64_t job) {
    return RunStep(job, [](EngineJob& step) { return step.EndBlock(); });
}

}  // extern "C"

}  // namespace orvex
