#include "tests/system/random_jobs/scripted_engine.h"

namespace orvex {

namespace {

ScriptedEngine* current = nullptr;

template <typename... Numbers>
std::string Line(std::string line, Numbers... numbers) {
    ((line += " " + std::to_string(numbers)), ...);
    return line;
}

}  // namespace

struct ScriptedCalls {
    static uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback output, void* context, uint32_t mode,
                                          uint32_t reserved) {
        current->output_ = output;
        current->context_ = context;
        const uint32_t status = current->Answer("JobStart", Line("JobStart", mode, reserved));
        return status == 0 ? 0 : current->part.Job();
    }
    static uint32_t HPCRLIB_CALL JobEnd(uint64_t job) {
        return current->Answer("JobEnd", Line("JobEnd", job));
    }
    static uint32_t HPCRLIB_CALL PageStart(uint64_t job, uint32_t width, uint32_t length) {
        return current->Answer("PageStart", Line("PageStart", job, width, length));
    }
    static uint32_t HPCRLIB_CALL PageEnd(uint64_t job) {
        return current->Answer("PageEnd", Line("PageEnd", job));
    }
    static uint32_t HPCRLIB_CALL BlockStart(uint64_t job, uint32_t reserved, uint32_t top, uint32_t rowWidth,
                                            uint32_t rows) {
        current->rowWidth_ = rowWidth;
        return current->Answer("RasterBlockStart", Line("RasterBlockStart", job, reserved,
                                                        static_cast<int32_t>(top), rowWidth, rows));
    }
    static uint32_t HPCRLIB_CALL Row(uint64_t job, const uint32_t* row) {
        const std::string inks(reinterpret_cast<const char*>(row), current->rowWidth_ * sizeof *row);
        return current->Answer("RasterRow", Line("RasterRow", job) + " " + inks);
    }
    static uint32_t HPCRLIB_CALL BlockEnd(uint64_t job) {
        return current->Answer("RasterBlockEnd", Line("RasterBlockEnd", job));
    }
};

ScriptedEngine::ScriptedEngine() {
    current = this;
}
ScriptedEngine::~ScriptedEngine() {
    current = nullptr;
}

PrintEngine ScriptedEngine::Entries() {
    PrintEngine entries;
    entries.HPCRLIB_JobStart = &ScriptedCalls::JobStart;
    entries.HPCRLIB_JobEnd = &ScriptedCalls::JobEnd;
    entries.HPCRLIB_PageStart = &ScriptedCalls::PageStart;
    entries.HPCRLIB_PageEnd = &ScriptedCalls::PageEnd;
    entries.HPCRLIB_RasterBlockStart = &ScriptedCalls::BlockStart;
    entries.HPCRLIB_RasterRow = &ScriptedCalls::Row;
    entries.HPCRLIB_RasterBlockEnd = &ScriptedCalls::BlockEnd;
    return entries;
}

uint32_t ScriptedEngine::Answer(const std::string& name, const std::string& event) {
    events.push_back(event);
    const plain::EngineReply reply = part.Next(name);
    uint32_t status = reply.status;
    for (const std::string& chunk : reply.chunks) {
        const bool taken = output_(reinterpret_cast<const uint8_t*>(chunk.data()),
                                   static_cast<uint32_t>(chunk.size()), context_) == 1;
        events.emplace_back(taken ? "output taken" : "output refused");
        if (!taken) status = 0;
    }
    return status;
}

}  // namespace orvex
