// Plain definition of what becomes of the engine's output on its way to the spooler.
#pragma once

#include <string>
#include <string_view>

namespace orvex::plain {

// Returns whether a chunk is longer than 6 bytes and its first and last three add up to 0 modulo 256.
bool IsFraming(std::string_view chunk);

// The state that a chunk of the engine's output meets and changes.
struct JobOutput {
    bool firstChunk = true;     // nothing but framing so far
    bool headerPending = true;  // the job header is not written yet
    // The value of the next such resolution command is replaced while both flags are set. A page sets both,
    // the start of the next page clears the first.
    bool switchPending = false;
    bool switchQueued = false;
    std::string switchCommand;

    // Returns the bytes of a chunk that reach the spooler if all writes succeed: nothing of framing;
    // otherwise the chunk, with the job header before its comment line and its resolution command replaced.
    std::string Spooled(std::string chunk, std::string_view header, int resolutionCode);
};

}  // namespace orvex::plain
