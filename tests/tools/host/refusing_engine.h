// A print engine that refuses only what a test makes it refuse.
#pragma once

#include <cstdint>

#include "engine/hpcrlib.h"

namespace orvex::tools {

struct RefusingEngine {
    inline static uint64_t job = 7;     // 0 refuses the job
    inline static uint32_t jobEnd = 1;  // the answer to a job's end
    inline static uint32_t refusedRow = UINT32_MAX;
    inline static uint32_t rows = 0;  // rows received

    // Makes it accept everything again.
    static void Reset() {
        job = 7;
        jobEnd = 1;
        refusedRow = UINT32_MAX;
        rows = 0;
    }

    static uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback, void*, uint32_t, uint32_t) { return job; }
    static uint32_t HPCRLIB_CALL JobEnd(uint64_t) { return jobEnd; }
    static uint32_t HPCRLIB_CALL PageStart(uint64_t, uint32_t, uint32_t) { return 1; }
    static uint32_t HPCRLIB_CALL BlockStart(uint64_t, uint32_t, uint32_t, uint32_t, uint32_t) { return 1; }
    static uint32_t HPCRLIB_CALL Row(uint64_t, const uint32_t*) { return rows++ == refusedRow ? 0 : 1; }
    static uint32_t HPCRLIB_CALL End(uint64_t) { return 1; }
};

constexpr PrintEngine kRefusingEngine = {
    RefusingEngine::JobStart, RefusingEngine::JobEnd, RefusingEngine::PageStart, RefusingEngine::BlockStart,
    RefusingEngine::Row,      RefusingEngine::End,    RefusingEngine::End,
};

}  // namespace orvex::tools
