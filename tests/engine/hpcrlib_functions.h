// The seven entry points, for programs that link hpcrlib.dll.
#pragma once

#include "engine/hpcrlib.h"

namespace orvex {

extern "C" {
uint64_t HPCRLIB_CALL HPCRLIB_JobStart(HPCRLIB_OutputCallback output, void* context, uint32_t resolutionMode,
                                       uint32_t reserved);
uint32_t HPCRLIB_CALL HPCRLIB_JobEnd(uint64_t job);
uint32_t HPCRLIB_CALL HPCRLIB_PageStart(uint64_t job, uint32_t width, uint32_t length);
uint32_t HPCRLIB_CALL HPCRLIB_PageEnd(uint64_t job);
uint32_t HPCRLIB_CALL HPCRLIB_RasterBlockStart(uint64_t job, uint32_t reserved, uint32_t top,
                                               uint32_t rowWidth, uint32_t rows);
uint32_t HPCRLIB_CALL HPCRLIB_RasterRow(uint64_t job, const uint32_t* row);
uint32_t HPCRLIB_CALL HPCRLIB_RasterBlockEnd(uint64_t job);
}

}  // namespace orvex
