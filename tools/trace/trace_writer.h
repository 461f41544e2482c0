// The tree of a log, written as text for a terminal, as JSON or as a page for a browser.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "tools/trace/trace_tree.h"

namespace orvex::tools::trace {

class TraceWriter {
  public:
    using Put = std::function<void(std::string_view)>;

    virtual ~TraceWriter() = default;
    virtual void Begin() {}
    virtual void Write(JobOfThread job, const Node& node) = 0;
    virtual void End(const TraceCounts& counts) = 0;
};

// Return a writer that passes what it makes to `put`, part by part.
std::unique_ptr<TraceWriter> MakeTextWriter(TraceWriter::Put put);
std::unique_ptr<TraceWriter> MakeJsonWriter(TraceWriter::Put put);
std::unique_ptr<TraceWriter> MakeHtmlWriter(TraceWriter::Put put, std::string_view title);

// Return texts that text and page share: what a node says, "12 ms", "3 jobs, 1,366 lines, 1 error, 20
// harmless ones".
std::string NodeText(const Node& node);
std::string DurationText(int64_t milliseconds);
std::string CountsText(const TraceCounts& counts);

}  // namespace orvex::tools::trace
