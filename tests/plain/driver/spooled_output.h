// Plain definition of the way of the print engine's output to the spooler, write by write.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "driver/config/device_mode.h"

namespace orvex::plain {

// The state of a job that its output meets and changes.
struct SpooledOutput {
    bool firstChunk = false;     // nothing but framing so far
    bool headerPending = false;  // the job header is not written yet
    // The resolution command that the page waits for; its value is replaced while both flags are set.
    std::string command;
    bool commandPending = false;
    bool commandQueued = false;
    int8_t resolutionCode = 0x30;
    std::string jobName, profileName;
    int32_t widthPx = 0, heightPx = 0;     // of the page bitmap at the start of the job
    std::optional<std::string> thumbnail;  // of the job; see PictureText()

    // Writes some bytes to the spooler. Returns false if they were refused.
    using Write = std::function<bool(const std::string& bytes)>;
    // Returns whether the installation wants the line of chunked pages.
    using ShowsChunks = std::function<bool()>;

    // Takes a chunk of the engine's output. Returns whether the callback succeeds.
    bool Take(const std::string& chunk, const DeviceMode& mode, const ShowsChunks& showsChunks,
              const Write& write);

  private:
    bool WriteHeader(const DeviceMode& mode, const ShowsChunks& showsChunks, const Write& write);
};

}  // namespace orvex::plain
