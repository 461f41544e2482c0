// The interface of the print engine's raster library, hpcrlib.dll, as the driver calls it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#if defined(_WIN32)
#define HPCRLIB_CALL __stdcall
#elif defined(__x86_64__)
#define HPCRLIB_CALL __attribute__((ms_abi))
#else
#define HPCRLIB_CALL
#endif

namespace orvex {

// The status of a call that succeeded. Any other, 0 among them, is a failure.
inline constexpr uint32_t kEngineSuccess = 1;

// The command in the output of a page that sets its resolution code: ESC "*o", the code, "M". The driver may
// replace the code.
inline constexpr std::string_view kResolutionCommand600Dpi = "\x1B*o0M";
inline constexpr std::string_view kResolutionCommandOther = "\x1B*o-1M";

extern "C" {

// Takes encoded output, on the thread of the call that produced it. Returns non-zero on success; 0 makes that
// call fail.
using HPCRLIB_OutputCallback = int32_t(HPCRLIB_CALL*)(const uint8_t* data, uint32_t length, void* context);

// Starts a job and returns its handle, or 0 on failure. `resolutionMode` is 0 for 300 dpi, 1 for 600 dpi, 2
// for any other; `reserved` is not used and must be 0.
uint64_t HPCRLIB_CALL HPCRLIB_JobStart(HPCRLIB_OutputCallback output, void* context, uint32_t resolutionMode,
                                       uint32_t reserved);

// Ends a job and frees it, even on failure; the handle is invalid afterwards.
uint32_t HPCRLIB_CALL HPCRLIB_JobEnd(uint64_t job);

// Starts a page; `width` and `length` are in 1/7200 inch.
uint32_t HPCRLIB_CALL HPCRLIB_PageStart(uint64_t job, uint32_t width, uint32_t length);
uint32_t HPCRLIB_CALL HPCRLIB_PageEnd(uint64_t job);

// Starts a block of `rows` rows of `rowWidth` pixels, `top` pixels below the start of the print head.
// `reserved` is not used and must be 0.
uint32_t HPCRLIB_CALL HPCRLIB_RasterBlockStart(uint64_t job, uint32_t reserved, uint32_t top,
                                               uint32_t rowWidth, uint32_t rows);

// Takes one row: `rowWidth` ink values of 32 bits, K in the lowest byte, then C, M and Y.
uint32_t HPCRLIB_CALL HPCRLIB_RasterRow(uint64_t job, const uint32_t* row);
uint32_t HPCRLIB_CALL HPCRLIB_RasterBlockEnd(uint64_t job);

}  // extern "C"

// The library's entry points. The driver needs all of them; they are null while no library is bound.
struct PrintEngine {
    decltype(&orvex::HPCRLIB_JobStart) HPCRLIB_JobStart = nullptr;
    decltype(&orvex::HPCRLIB_JobEnd) HPCRLIB_JobEnd = nullptr;
    decltype(&orvex::HPCRLIB_PageStart) HPCRLIB_PageStart = nullptr;
    decltype(&orvex::HPCRLIB_RasterBlockStart) HPCRLIB_RasterBlockStart = nullptr;
    decltype(&orvex::HPCRLIB_RasterRow) HPCRLIB_RasterRow = nullptr;
    decltype(&orvex::HPCRLIB_RasterBlockEnd) HPCRLIB_RasterBlockEnd = nullptr;
    decltype(&orvex::HPCRLIB_PageEnd) HPCRLIB_PageEnd = nullptr;
};

// The name that the library exports an entry point by, and its place in a PrintEngine.
struct PrintEngineExport {
    const char* name;
    size_t offset;

    void** In(PrintEngine& engine) const {
        return reinterpret_cast<void**>(reinterpret_cast<uint8_t*>(&engine) + offset);
    }
};

inline constexpr PrintEngineExport kPrintEngineExports[] = {
    {"HPCRLIB_JobStart", offsetof(PrintEngine, HPCRLIB_JobStart)},
    {"HPCRLIB_JobEnd", offsetof(PrintEngine, HPCRLIB_JobEnd)},
    {"HPCRLIB_PageStart", offsetof(PrintEngine, HPCRLIB_PageStart)},
    {"HPCRLIB_RasterBlockStart", offsetof(PrintEngine, HPCRLIB_RasterBlockStart)},
    {"HPCRLIB_RasterRow", offsetof(PrintEngine, HPCRLIB_RasterRow)},
    {"HPCRLIB_RasterBlockEnd", offsetof(PrintEngine, HPCRLIB_RasterBlockEnd)},
    {"HPCRLIB_PageEnd", offsetof(PrintEngine, HPCRLIB_PageEnd)},
};

}  // namespace orvex
