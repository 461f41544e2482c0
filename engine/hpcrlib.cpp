// The seven entry points of the stand-in hpcrlib.dll: handles and what crosses the library's boundary.
#include "engine/hpcrlib.h"

#include <map>
#include <memory>
#include <mutex>
#include <type_traits>

#include "engine/engine_job.h"
#include "engine/print_stream.h"

#if defined(_WIN32)
#define HPCRLIB_EXPORT  // hpcrlib.def exports them undecorated
#else
#define HPCRLIB_EXPORT __attribute__((visibility("default")))
#endif

#ifdef _WIN32
namespace __gnu_cxx {
void __freeres();
}
#endif

namespace orvex::engine {

namespace {

#ifdef _WIN32
// The library has a C++ runtime of its own, whose reserve of memory for exceptions would outlive it, once for
// each job that the driver loads it for.
struct RuntimeReserve {
    ~RuntimeReserve() { __gnu_cxx::__freeres(); }
} runtimeReserve;
#endif

constexpr uint32_t kFailure = 0;

struct JobEntry {
    std::unique_ptr<EngineJob> job;
    bool inCall = false;
};

// Every running job under its handle. Handles are never used twice, so a stale one is always refused. The
// lock is not held while a job works: its output callback may take long, or start another job.
struct JobTable {
    std::mutex lock;
    std::map<uint64_t, JobEntry> jobs;
    uint64_t lastHandle = 0;
};

// Not a static of a function: the lock that guards its first use would leave handles behind each time that
// the driver, which loads the library for each job, unloads it again.
JobTable jobTable;

enum class Afterwards { kKeep, kRemove };

// Holds a job for the time of one call. A job that is already in a call, on another thread or further up this
// one's stack, is not given again.
class JobInCall {
  public:
    JobInCall(uint64_t handle, Afterwards afterwards) : handle_(handle), afterwards_(afterwards) {
        const std::lock_guard guard(jobTable.lock);
        const auto found = jobTable.jobs.find(handle);
        if (found == jobTable.jobs.end() || found->second.inCall) return;
        entry_ = &found->second;
        entry_->inCall = true;
    }
    ~JobInCall() {
        if (!entry_) return;
        const std::lock_guard guard(jobTable.lock);
        entry_->inCall = false;
        if (afterwards_ == Afterwards::kRemove) jobTable.jobs.erase(handle_);
    }
    JobInCall(const JobInCall&) = delete;
    JobInCall& operator=(const JobInCall&) = delete;

    EngineJob* Get() const { return entry_ ? entry_->job.get() : nullptr; }

  private:
    uint64_t handle_;
    Afterwards afterwards_;
    JobEntry* entry_ = nullptr;
};

// Runs one step of a job. Exceptions, which mean that memory is short, end here and so does the job's output.
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
        auto job = std::make_unique<EngineJob>(output, context, resolutionMode);
        const std::lock_guard guard(jobTable.lock);
        jobTable.jobs[++jobTable.lastHandle].job = std::move(job);
        return jobTable.lastHandle;
    } catch (...) {
        return 0;
    }
}

// Frees the job whether or not it ends well; the handle is invalid afterwards.
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

static_assert(std::is_same_v<decltype(&HPCRLIB_JobStart), HPCRLIB_JobStartFunction>);
static_assert(std::is_same_v<decltype(&HPCRLIB_JobEnd), HPCRLIB_JobEndFunction>);
static_assert(std::is_same_v<decltype(&HPCRLIB_PageStart), HPCRLIB_PageStartFunction>);
static_assert(std::is_same_v<decltype(&HPCRLIB_PageEnd), HPCRLIB_PageEndFunction>);
static_assert(std::is_same_v<decltype(&HPCRLIB_RasterBlockStart), HPCRLIB_RasterBlockStartFunction>);
static_assert(std::is_same_v<decltype(&HPCRLIB_RasterRow), HPCRLIB_RasterRowFunction>);
static_assert(std::is_same_v<decltype(&HPCRLIB_RasterBlockEnd), HPCRLIB_RasterBlockEndFunction>);

}  // namespace orvex::engine
