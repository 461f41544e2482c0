#include <algorithm>

#include "tools/common/html_text.h"
#include "tools/trace/trace_writer.h"

namespace orvex::tools::trace {

namespace {

constexpr char kStyle[] = R"(
:root { color-scheme: light dark; --quiet: #667; --trouble: #c22; --slow: #b60 }
@media screen and (prefers-color-scheme: dark) { :root { --quiet: #99a; --trouble: #f66; --slow: #fa4 } }
body { font: 14px/1.45 ui-monospace, monospace; margin: 1.5rem; overflow-wrap: anywhere }
h1, h2 { font-family: system-ui, sans-serif }
details > *:not(summary), details details { margin-left: 1.5rem }
time, small { color: var(--quiet) }
.error { color: var(--trouble); font-weight: bold }
.stray { color: var(--slow) }
summary { cursor: pointer }
@media print { :root { color-scheme: light } }
)";

const char* ClassOf(const Node& node) {
    if (node.IsTrouble()) return " class=\"error\"";
    return node.kind == NodeKind::kStray ? " class=\"stray\"" : "";
}

bool HasTrouble(const Node& node) {
    return node.IsTrouble() || std::any_of(node.children.begin(), node.children.end(), HasTrouble);
}

// A page without scripts: operations are folded, except for those with an error in them.
class HtmlWriter : public TraceWriter {
  public:
    HtmlWriter(Put put, std::string_view title) : put_(std::move(put)), title_(HtmlText(title)) {}

    void Begin() override {
        put_(
            "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
            "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
            title_ + "</title><style>" + kStyle + "</style></head>\n<body><h1>" + title_ + "</h1>\n");
    }

    void Write(JobOfThread job, const Node& node) override {
        if (job != job_) {
            put_("<h2>Job " + std::to_string(job.number) + ", thread " + std::to_string(job.thread) +
                 (node.time == 0 ? "" : ", " + DateText(node.time)) + "</h2>\n");
            job_ = job;
        }
        WriteNode(node);
    }

    void End(const TraceCounts& counts) override {
        put_("<p>" + CountsText(counts) + "</p></body></html>\n");
    }

  private:
    void WriteNode(const Node& node) {
        std::string line = node.time == 0 ? "" : "<time>" + ClockText(node.time) + "</time> ";
        line += "<span" + std::string(ClassOf(node)) + ">" + HtmlText(NodeText(node)) + "</span>";
        if (node.duration) line += " <small>" + DurationText(*node.duration) + "</small>";
        if (node.children.empty()) return put_("<div>" + line + "</div>\n");
        put_((HasTrouble(node) ? "<details open><summary>" : "<details><summary>") + line + "</summary>\n");
        for (const Node& child : node.children) WriteNode(child);
        put_("</details>\n");
    }

    Put put_;
    std::string title_;
    JobOfThread job_;
};

}  // namespace

std::unique_ptr<TraceWriter> MakeHtmlWriter(TraceWriter::Put put, std::string_view title) {
    return std::make_unique<HtmlWriter>(std::move(put), title);
}

}  // namespace orvex::tools::trace
