// One job of the stand-in engine: which call may follow which, what the arguments may be, and what each call
// adds to the print stream.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/hpcrlib.h"
#include "engine/stream_writer.h"

namespace orvex::engine {

// Every function returns true on success. A call out of order or with a bad argument is refused and changes
// nothing. After a failed output callback every further call fails and nothing more is output.
class EngineJob {
  public:
    // `resolutionMode` is below print_stream::kResolutionModes. Nothing is output yet.
    EngineJob(HPCRLIB_OutputCallback output, void* context, uint32_t resolutionMode)
        : stream_(output, context), resolutionMode_(resolutionMode) {}

    // The first page brings the framing chunk and the PJL opening, a chunk each. Then the page's own chunk.
    bool StartPage(uint32_t width, uint32_t length);
    // One block a page. It must lie on its page.
    bool StartBlock(uint32_t top, uint32_t rowWidth, uint32_t rows);
    bool PutRow(const uint32_t* row);
    // Refused, with the block still open, while rows are missing.
    bool EndBlock();
    bool EndPage();
    // False, and nothing output, when a page is still open. A job without pages outputs nothing.
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
