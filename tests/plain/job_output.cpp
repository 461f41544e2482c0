#include "tests/plain/job_output.h"

#include <cstdint>

#include "tests/plain/job_header.h"

namespace orvex::plain {

bool IsFraming(std::string_view chunk) {
    if (chunk.size() < 7) return false;
    const std::string ends = std::string(chunk.substr(0, 3)).append(chunk.substr(chunk.size() - 3));
    uint8_t sum = 0;
    for (const char each : ends) sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(each));
    return sum == 0;
}

std::string JobOutput::Spooled(std::string chunk, std::string_view header, int resolutionCode) {
    if (firstChunk && IsFraming(chunk)) return "";
    firstChunk = false;
    size_t patchFrom = 0;
    const size_t comment = chunk.find(kCommentLine);
    if (headerPending && comment < chunk.find('\0')) {
        chunk.insert(comment, header);
        patchFrom = comment + header.size();
        headerPending = false;
    }
    // The command is ESC "*o", a value, "M".
    const size_t match = chunk.find(switchCommand, patchFrom);
    if (switchPending && switchQueued && match != std::string::npos) {
        chunk.replace(match + 3, switchCommand.size() - 4, std::to_string(resolutionCode));
        switchPending = switchQueued = false;
    }
    return chunk;
}

}  // namespace orvex::plain
