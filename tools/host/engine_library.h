// The print engine's library as the driver binds it. The driver's request for hpcrlib.dll is answered with a
// file that the host chooses, or with a test's own functions. Either way the driver gets thunks that pass on
// every call and record it, because the driver itself only logs what the engine refuses.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "engine/hpcrlib.h"
#include "platform/windows.h"
#include "tools/host/import_patch.h"

namespace orvex::tools {

// A library file, or functions in this process; a null function is an export that the library lacks.
using EngineSource = std::variant<std::filesystem::path, PrintEngine>;

// One page as it was announced to the engine: the page in 1/7200 inch, its block in pixels.
struct EnginePage {
    uint32_t width = 0;
    uint32_t length = 0;
    uint32_t blockTop = 0;
    uint32_t rowWidth = 0;
    uint32_t blockRows = 0;
    uint32_t rowsTaken = 0;
};

// The engine's record of all its jobs.
struct EngineBooks {
    uint32_t loads = 0;
    uint32_t frees = 0;
    uint32_t jobsStarted = 0;
    uint32_t jobsEnded = 0;
    uint64_t pagesStarted = 0;
    uint64_t pagesEnded = 0;
    uint64_t rowsTaken = 0;
    std::vector<EnginePage> pages;  // the first 100,000, but always the last one
    // Calls that the engine refused, and reasons why it could not be bound, in words: the first ones, and
    // their total number.
    std::vector<std::string> refusals;
    uint64_t refusalCount = 0;
};

class EngineLibrary : public ImportService<EngineLibrary> {
  public:
    explicit EngineLibrary(EngineSource source) : source_(std::move(source)) {}

    void Attach(HMODULE module);

    const EngineBooks& Books() const { return books_; }
    // Returns whether the driver has the library loaded.
    bool Bound() const { return books_.loads != books_.frees; }

    // Makes the driver's attempts to load the library fail, as if it were missing.
    void FailLoading(bool fail) { loadingFails_ = fail; }
    // Sets a function that is called after every row that the engine takes; pages count from 1.
    void OnRow(std::function<void(const EnginePage&, uint64_t page)> observer) {
        onRow_ = std::move(observer);
    }

  private:
    struct Thunks;
    struct LoaderReplacements;

    void Refused(std::string complaint);

    EngineSource source_;
    PrintEngine entries_;  // what the thunks call
    HMODULE handle_ = nullptr;
    bool loadingFails_ = false;
    EngineBooks books_;
    std::function<void(const EnginePage&, uint64_t)> onRow_;
};

}  // namespace orvex::tools
