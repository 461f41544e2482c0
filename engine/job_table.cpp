#include "engine/job_table.h"

#include <map>
#include <mutex>

#ifdef _WIN32
namespace __gnu_cxx {
void __freeres();
}
#endif

namespace orvex::engine {

namespace {

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

}  // namespace

uint64_t AddJob(std::unique_ptr<EngineJob> job) {
    const std::lock_guard guard(jobTable.lock);
    jobTable.jobs[++jobTable.lastHandle].job = std::move(job);
    return jobTable.lastHandle;
}

JobInCall::JobInCall(uint64_t handle, Afterwards afterwards) : handle_(handle), afterwards_(afterwards) {
    const std::lock_guard guard(jobTable.lock);
    const auto found = jobTable.jobs.find(handle);
    if (found == jobTable.jobs.end() || found->second.inCall) return;
    found->second.inCall = true;
    job_ = found->second.job.get();
}

JobInCall::~JobInCall() {
    if (!job_) return;
    const std::lock_guard guard(jobTable.lock);
    if (afterwards_ == Afterwards::kRemove) {
        jobTable.jobs.erase(handle_);
    } else {
        jobTable.jobs.find(handle_)->second.inCall = false;
    }
}

}  // namespace orvex::engine
