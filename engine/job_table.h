// The running jobs of the stand-in engine, and the handles that its callers know them by.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/engine_job.h"

namespace orvex::engine {

// Adds a job and returns its handle, which is never 0 and never used twice, so a stale handle is always
// refused.
uint64_t AddJob(std::unique_ptr<EngineJob> job);

// What happens to a job after a call.
enum class Afterwards { kKeep, kRemove };

// Reserves a job for the duration of one call. A job that is in a call already, on another thread or further
// up this one's stack, is not found.
class JobInCall {
  public:
    JobInCall(uint64_t handle, Afterwards afterwards);
    ~JobInCall();
    JobInCall(const JobInCall&) = delete;
    JobInCall& operator=(const JobInCall&) = delete;

    // Returns the job, or null if it was not found.
    EngineJob* Get() const { return job_; }

  private:
    uint64_t handle_;
    Afterwards afterwards_;
    EngineJob* job_ = nullptr;
};

}  // namespace orvex::engine
