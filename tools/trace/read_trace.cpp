#include "tools/trace/read_trace.h"

#include <limits>
#include <string>

namespace orvex::tools::trace {

namespace {

constexpr std::streamsize kMostLineBytes = 8192;  // of a line; the rest is dropped

// Removes what the filter does not let through. Returns whether anything is left.
bool Filter(const TraceFilter& filter, Node& node) {
    if (!filter.errors && !filter.slow) return true;
    std::erase_if(node.children, [&](Node& child) { return !Filter(filter, child); });
    return !node.children.empty() || (filter.errors && node.IsTrouble()) ||
           (filter.slow && node.duration && *node.duration >= *filter.slow);
}

uint64_t ErrorsIn(const Node& node) {
    uint64_t errors = node.IsTrouble() ? 1 : 0;
    for (const Node& child : node.children) errors += ErrorsIn(child);
    return errors;
}

bool TakeLine(std::istream& log, std::string& line) {
    line.resize(kMostLineBytes);
    log.getline(line.data(), kMostLineBytes);
    if (log.gcount() == 0) return false;
    line.resize(static_cast<size_t>(log.gcount()));
    if (log.fail() && !log.eof()) {  // the line is longer
        log.clear();
        log.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    while (line.ends_with('\0')) line.pop_back();
    return true;
}

}  // namespace

ReadLog ReadTrace(std::istream& log, const TraceFilter& filter, TraceWriter& writer) {
    ReadLog result;
    writer.Begin();
    TraceTree tree([&](JobOfThread job, Node&& node) {
        if (filter.job && job.number != *filter.job) return;
        result.errors += ErrorsIn(node);
        if (Filter(filter, node)) writer.Write(job, node);
    });
    std::string line;
    while (TakeLine(log, line)) {
        if (filter.thread) {
            const std::optional<LogLine> parsed = ParseLogLine(line);
            if (!parsed || parsed->thread != *filter.thread) continue;
        }
        tree.TakeLine(line);
    }
    tree.Finish();
    result.counts = tree.Counts();
    writer.End(result.counts);
    return result;
}

}  // namespace orvex::tools::trace
