// A print engine's library in this process that records every call, keeps every row and fails on request.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/host/engine_library.h"

namespace orvex {

class RecordingEngine {
  public:
    RecordingEngine();
    ~RecordingEngine();
    RecordingEngine(const RecordingEngine&) = delete;
    RecordingEngine& operator=(const RecordingEngine&) = delete;

    PrintEngine Entries() const;

    // Makes the n-th call of that name from now on, where 1 is the next, return `status`.
    void Fail(const std::string& call, int nth, uint32_t status = 0) { failures_[call] = {nth, status}; }

    // Hands bytes to the driver's output callback, as the library does inside its calls, and returns the
    // callback's result.
    int32_t Output(std::string_view bytes);

    static constexpr uint64_t kJob = 0x1'0000'BEEF;  // wider than 32 bits

    std::vector<std::string> calls;           // every call except rows, with its arguments
    std::vector<std::vector<uint32_t>> rows;  // of the current block
    std::function<void()> onJobStart;         // inside HPCRLIB_JobStart
    std::function<void()> onJobEnd;           // inside HPCRLIB_JobEnd
    std::function<void()> onPageStart;        // inside HPCRLIB_PageStart
    // Takes each row of a page that is too large to keep all of its rows; `rows` stays empty then.
    std::function<void(std::span<const uint32_t> row)> onRow;
    HPCRLIB_OutputCallback output = nullptr;
    void* context = nullptr;

  private:
    friend struct RecordingEntryPoints;
    struct Failure {
        int countdown;
        uint32_t status;
    };
    uint32_t Status(const char* call);

    std::map<std::string, Failure> failures_;
    uint32_t rowWidth_ = 0;
};

}  // namespace orvex
