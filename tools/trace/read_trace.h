// A whole log on its way from a file to a writer.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>

#include "tools/trace/trace_writer.h"

namespace orvex::tools::trace {

// The part of a log that is shown: all of it, unless something is asked for. Operations around it are shown
// too.
struct TraceFilter {
    bool errors = false;                  // errors that no sound job has
    std::optional<int64_t> slow = {};     // operations of at least so many milliseconds
    std::optional<uint32_t> job = {};     // its number
    std::optional<uint32_t> thread = {};  // lines of no other thread are read
};

struct ReadLog {
    TraceCounts counts;
    uint64_t errors = 0;  // that no sound job has, in the job that was asked for
};

// Reads the log to its end, in constant memory, and writes what the filter lets through. Returns what was
// found in it.
ReadLog ReadTrace(std::istream& log, const TraceFilter& filter, TraceWriter& writer);

}  // namespace orvex::tools::trace
