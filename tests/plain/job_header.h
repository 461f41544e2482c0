// Plain definition of the job header: the PJL lines that the driver puts before the engine's comment line.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "driver/config/device_mode.h"
#include "driver/support/text.h"

namespace orvex::plain {

// The beginning of the engine's line that the header goes before.
inline constexpr std::string_view kCommentLine = "@PJL COMMENT";

// The facts of a job in its header, beside its device mode.
struct HeaderFacts {
    std::string jobName;  // as JobName() returns it
    std::string profileName;
    int resolutionCode = 0;  // -128 to 127
    int64_t widthPx = 0;     // of the page bitmap
    int64_t heightPx = 0;
    bool showsChunks = false;                   // the installation's setting Show_Chunked
    std::optional<std::string> thumbnail = {};  // base64 text
};

// Returns all lines of the header.
std::string JobHeader(const DeviceMode& mode, const HeaderFacts& facts);

// Returns the name of a document as a header has it: in the narrow code page, as many whole characters as fit
// into 511 bytes.
std::string JobName(WideView documentName);

}  // namespace orvex::plain
