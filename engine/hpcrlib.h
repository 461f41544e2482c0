// The interface of the print engine's raster library, hpcrlib.dll, as the driver calls it. Lengths are
// unsigned 32-bit numbers; a status of 1 is success.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#define HPCRLIB_CALL __stdcall
#elif defined(__x86_64__)
#define HPCRLIB_CALL __attribute__((ms_abi))
#endif

extern "C" {

// Takes encoded output, on the thread of the call that produced it. Non-zero is success; 0 makes that call
// fail.
typedef int32_t(HPCRLIB_CALL* HPCRLIB_OutputCallback)(const uint8_t* data, uint32_t length, void* context);

// Starts a job; resolutionMode is 0 for 300 dpi, 1 for 600 dpi, 2 for any other. `reserved` is 0. The job's
// handle, or 0.
typedef uint64_t(HPCRLIB_CALL* HPCRLIB_JobStartFunction)(HPCRLIB_OutputCallback output, void* context,
                                                         uint32_t resolutionMode, uint32_t reserved);
typedef uint32_t(HPCRLIB_CALL* HPCRLIB_JobEndFunction)(uint64_t job);

// Starts a page of that size in 1/7200 inch.
typedef uint32_t(HPCRLIB_CALL* HPCRLIB_PageStartFunction)(uint64_t job, uint32_t width, uint32_t length);
typedef uint32_t(HPCRLIB_CALL* HPCRLIB_PageEndFunction)(uint64_t job);

// Starts a block of `rows` rows of `rowWidth` pixels, `top` pixels below the print head's start. `reserved`
// is 0.
typedef uint32_t(HPCRLIB_CALL* HPCRLIB_RasterBlockStartFunction)(uint64_t job, uint32_t reserved,
                                                                 uint32_t top, uint32_t rowWidth,
                                                                 uint32_t rows);

// Hands over one row: rowWidth ink values of 32 bits, K in the lowest byte, then C, M and Y.
typedef uint32_t(HPCRLIB_CALL* HPCRLIB_RasterRowFunction)(uint64_t job, const uint32_t* row);
typedef uint32_t(HPCRLIB_CALL* HPCRLIB_RasterBlockEndFunction)(uint64_t job);

}  // extern "C"
