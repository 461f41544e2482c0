// The seven entry points of the stand-in hpcrlib.dll. No exception leaves them.

#include "engine/hpcrlib.h"
#include "engine/job_table.h"
#include "engine/print_stream.h"

#if defined(_WIN32)
#define HPCRLIB_EXPORT  // hpcrlib.def exports them undecorated
#else
#define HPCRLIB_EXPORT __attribute__((visibility("default")))
#endif

namespace orvex {

using namespace engine;

namespace {

constexpr uint32_t kFailure = 0;

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
