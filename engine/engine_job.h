// One job of the stand-in engine: which call may follow which, what the arguments may be, and what each call
// adds to the print stream.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/hpcrlib.h"
#include "engine/stream_writer.h"

namespace orvex::engine {

// Every step returns true on success. A call out of order or with a bad argument is refused and changes
// nothing. After the output callback has failed, every further call fails and nothing more is output.
class EngineJob {
  public:
    // Outputs nothing yet. `resolutionMode` is below print_stream::kResolutionModes.
    EngineJob(HPCRLIB_OutputCallback output, void* context, uint32_t resolutionMode)
        : stream_(output, context), resolutionMode_(resolutionMode) {}

    // Outputs the page's start as a chunk; on the first page, a chunk of framing and one of the PJL opening
    // come before it.
    bool StartPage(uint32_t width, uint32_t length);
    // Starts the only block of a page, which must lie on the page.
    bool StartBlock(uint32_t top, uint32_t rowWidth, uint32_t rows);
    bool PutRow(const uint32_t* row);
    // Refuses, and leaves the block open, while rows are missing.
    bool EndBlock();
    bool EndPage();
    // Refuses while a page is open. A job without pages outputs nothing.
    bool End();

    // Makes every further call fail.
    void Break() { stage_ = Stage::kBroken; }

  private:
    enum class Stage { kBetweenPages, kBeforeBlock, kInBlock, kAfterBlock, kBroken };

    bool Output();
    bool OpenStream();
    uint32_t BlockSlack() const;
    void EncodeRowIntoStream(const uint32_t* row);

    StreamWriter stream_;
    uint32_t resolutionMode_;
    Stage stage_ = Stage::kBetweenPages;
    uint32_t pages_ = 0;
    uint32_t pageWidth_ = 0;
    uint32_t pageLength_ = 0;
    uint32_t top_ = 0;
    uint32_t rowWidth_ = 0;
    uint32_t announcedRows_ = 0;
    uint32_t rows_ = 0;
    std::vector<uint32_t> above_;
};

}  // namespace orvex::engine
