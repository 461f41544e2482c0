// A print engine in this process that answers and outputs by a script, and notes what it is asked.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/plain/driver/world.h"
#include "tools/host/engine_library.h"

namespace orvex {

class ScriptedEngine {
  public:
    ScriptedEngine();
    ~ScriptedEngine();
    ScriptedEngine(const ScriptedEngine&) = delete;
    ScriptedEngine& operator=(const ScriptedEngine&) = delete;

    static PrintEngine Entries();

    plain::EnginePart part;
    // The calls with their arguments and rows, and whether the driver took the output.
    std::vector<std::string> events;

  private:
    friend struct ScriptedCalls;
    // Notes a call, outputs what the script says and returns the status.
    uint32_t Answer(const std::string& name, const std::string& event);

    HPCRLIB_OutputCallback output_ = nullptr;
    void* context_ = nullptr;
    uint32_t rowWidth_ = 0;
};

}  // namespace orvex
