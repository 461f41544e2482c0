#include "tests/plain/driver/spooled_output.h"

#include <vector>

#include "tests/plain/job_header.h"
#include "tests/plain/job_output.h"

namespace orvex::plain {

namespace {

// Number of the header's line that is left out unless the installation wants it.
constexpr size_t kChunkLine = 19;
// Those lines whose writes must succeed; those of the two names are not checked.
constexpr size_t kCheckedLines = 20;

// Returns the header's lines, each of which is written by itself. A name may contain line ends.
std::vector<std::string> Lines(const DeviceMode& mode, HeaderFacts facts, const std::string& jobName,
                               const std::string& profileName) {
    facts.showsChunks = true;
    const std::string text = JobHeader(mode, facts);
    std::vector<std::string> lines;
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find('\n', at) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    const size_t count = lines.size();
    lines[count - 2].insert(lines[count - 2].find('"') + 1, jobName);
    lines[count - 1].insert(lines[count - 1].find('"') + 1, profileName);
    return lines;
}

}  // namespace

bool SpooledOutput::WriteHeader(const DeviceMode& mode, const ShowsChunks& showsChunks, const Write& write) {
    HeaderFacts facts;
    facts.resolutionCode = resolutionCode;
    facts.widthPx = widthPx;
    facts.heightPx = heightPx;
    bool written = true;
    size_t number = 0;
    for (const std::string& line : Lines(mode, facts, jobName, profileName)) {
        ++number;
        if (number == kChunkLine && !showsChunks()) continue;
        written = write(line);
        if (!written && number <= kCheckedLines) return false;
    }
    if (!thumbnail) return written;
    write("@PJL SET QRV_THUMBNAIL=\"");
    write(*thumbnail);
    thumbnail.reset();
    return write("\"\n");
}

bool SpooledOutput::Take(const std::string& chunk, const DeviceMode& mode, const ShowsChunks& showsChunks,
                         const Write& write) {
    if (firstChunk && IsFraming(chunk)) return true;
    firstChunk = false;
    std::string rest = chunk;
    const size_t comment = chunk.substr(0, chunk.find('\0')).find(kCommentLine);
    if (headerPending && comment != std::string::npos) {
        if (comment > 0 && !write(chunk.substr(0, comment))) return false;
        if (!WriteHeader(mode, showsChunks, write)) return false;
        headerPending = false;
        rest = chunk.substr(comment);
    }
    const size_t match = rest.find(command);
    if (commandPending && commandQueued && match != std::string::npos) {
        commandPending = commandQueued = false;
        if (!write(rest.substr(0, match + 3))) return false;
        if (!write(std::to_string(resolutionCode))) return false;
        rest = rest.substr(match + command.size() - 1);
    }
    return rest.empty() || write(rest);
}

}  // namespace orvex::plain
