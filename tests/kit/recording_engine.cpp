#include "tests/kit/recording_engine.h"

#include <sstream>

namespace orvex {

namespace {

RecordingEngine* current = nullptr;

template <typename... Arguments>
void Note(const char* call, Arguments... arguments) {
    std::ostringstream line;
    line << call;
    ((line << ' ' << arguments), ...);
    current->calls.push_back(line.str());
}

}  // namespace

struct RecordingEntryPoints {
    static uint64_t HPCRLIB_CALL JobStart(HPCRLIB_OutputCallback output, void* context, uint32_t mode,
                                          uint32_t reserved) {
        Note("JobStart", mode, reserved);
        current->output = output;
        current->context = context;
        if (current->onJobStart) current->onJobStart();
        return current->Status("JobStart") == kEngineSuccess ? RecordingEngine::kJob : 0;
    }
    static uint32_t HPCRLIB_CALL JobEnd(uint64_t job) {
        Note("JobEnd");
        if (current->onJobEnd) current->onJobEnd();
        return Checked("JobEnd", job);
    }
    static uint32_t HPCRLIB_CALL PageStart(uint64_t job, uint32_t width, uint32_t length) {
        Note("PageStart", width, length);
        if (current->onPageStart) current->onPageStart();
        return Checked("PageStart", job);
    }
    static uint32_t HPCRLIB_CALL PageEnd(uint64_t job) { return Noted("PageEnd", job); }
    static uint32_t HPCRLIB_CALL BlockStart(uint64_t job, uint32_t reserved, uint32_t top, uint32_t rowWidth,
                                            uint32_t rows) {
        Note("RasterBlockStart", reserved, static_cast<int32_t>(top), rowWidth, rows);
        current->rowWidth_ = rowWidth;
        current->rows.clear();
        return Checked("RasterBlockStart", job);
    }
    static uint32_t HPCRLIB_CALL Row(uint64_t job, const uint32_t* row) {
        if (current->onRow) {
            current->onRow({row, current->rowWidth_});
        } else {
            current->rows.emplace_back(row, row + current->rowWidth_);
        }
        return Checked("RasterRow", job);
    }
    static uint32_t HPCRLIB_CALL BlockEnd(uint64_t job) { return Noted("RasterBlockEnd", job); }

  private:
    static uint32_t Checked(const char* call, uint64_t job) {
        if (job != RecordingEngine::kJob) Note("wrong job", call, job);
        return current->Status(call);
    }
    static uint32_t Noted(const char* call, uint64_t job) {
        Note(call);
        return Checked(call, job);
    }
};

RecordingEngine::RecordingEngine() {
    current = this;
}
RecordingEngine::~RecordingEngine() {
    current = nullptr;
}

PrintEngine RecordingEngine::Entries() const {
    PrintEngine entries;
    entries.HPCRLIB_JobStart = &RecordingEntryPoints::JobStart;
    entries.HPCRLIB_JobEnd = &RecordingEntryPoints::JobEnd;
    entries.HPCRLIB_PageStart = &RecordingEntryPoints::PageStart;
    entries.HPCRLIB_PageEnd = &RecordingEntryPoints::PageEnd;
    entries.HPCRLIB_RasterBlockStart = &RecordingEntryPoints::BlockStart;
    entries.HPCRLIB_RasterRow = &RecordingEntryPoints::Row;
    entries.HPCRLIB_RasterBlockEnd = &RecordingEntryPoints::BlockEnd;
    return entries;
}

int32_t RecordingEngine::Output(std::string_view bytes) {
    return output(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size()),
                  context);
}

uint32_t RecordingEngine::Status(const char* call) {
    const auto failure = failures_.find(call);
    if (failure == failures_.end() || --failure->second.countdown != 0) return kEngineSuccess;
    return failure->second.status;
}

}  // namespace orvex
