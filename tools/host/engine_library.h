// The print engine's library as the driver binds it. The driver's request for hpcrlib.dll is answered with a
// file of the host's choice, or with functions of a test's own; either way the driver gets thunks that pass
// every call on and keep the books, since the driver itself only logs what the engine refuses.
//
// One engine library exists at a time in a process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "engine/hpcrlib.h"
#include "platform/windows.h"
#include "tools/host/patch_set.h"

namespace orvex::tools {

// A library file, or functions in this process, of which a null one is an export that the library lacks.
using EngineSource = std::variant<std::filesystem::path, PrintEngine>;

// One page as the engine was told of it. Lengths of the page in 1/7200 inch, of the block in pixels.
struct EnginePage {
    uint32_t width = 0;
    uint32_t length = 0;
    uint32_t blockTop = 0;
    uint32_t rowWidth = 0;
    uint32_t blockRows = 0;
    uint32_t rowsTaken = 0;
};

// What the engine did in all of its jobs.
struct EngineBooks {
    uint32_t loads = 0;
    uint32_t frees = 0;
    uint32_t jobsStarted = 0;
    uint32_t jobsEnded = 0;
    uint64_t pagesStarted = 0;
    uint64_t pagesEnded = 0;
    uint64_t rowsTaken = 0;
    std::vector<EnginePage> pages;  // the first 100,000, the last one always
    // What the engine refused, or could not be bound for, in words: the first ones of them, and how many
    // there were.
    std::vector<std::string> refusals;
    uint64_t refusalCount = 0;
};

class EngineLibrary {
  public:
    explicit EngineLibrary(EngineSource source);
    ~EngineLibrary();
    EngineLibrary(const EngineLibrary&) = delete;
    EngineLibrary& operator=(const EngineLibrary&) = delete;

    void Attach(HMODULE module);

    const EngineBooks& Books() const { return books_; }
    // Whether the driver holds the library at this moment.
    bool Bound() const { return books_.loads != books_.frees; }

    // Makes the driver's attempts to load the library fail, as if it were not there.
    void FailLoading(bool fail) { loadingFails_ = fail; }
    // Called after every row that the engine took, with the page as it stands and its number from 1.
    void OnRow(std::function<void(const EnginePage&, uint64_t page)> observer) {
        onRow_ = std::move(observer);
    }

  private:
    friend struct EngineThunks;
    friend struct LoaderReplacements;

    void Refused(std::string complaint);

    EngineSource source_;
    PrintEngine entries_;  // what the thunks call
    HMODULE handle_ = nullptr;
    bool loadingFails_ = false;
    EngineBooks books_;
    std::function<void(const EnginePage&, uint64_t)> onRow_;
    PatchSet patches_;
};

}  // namespace orvex::tools
