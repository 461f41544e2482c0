#include <algorithm>

#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"
#include "tools/trace/trace_writer.h"

namespace orvex::tools::trace {

namespace {

constexpr size_t kClockWidth = 12;
constexpr size_t kDurationWidth = 10;

std::string Counted(uint64_t count, const char* one, const char* several) {
    return GroupedNumber(count) + " " + (count == 1 ? one : several);
}

std::string FieldsText(const Node& dump) {
    std::string text;
    for (const ChangedField& field : dump.fields) {
        text += (text.empty() ? " " : ", ") + PrintableText(field.name) + " ";
        if (!field.before.empty()) text += PrintableText(field.before) + " -> ";
        text += PrintableText(field.after);
    }
    return text.empty() ? " as before" : text;
}

class TextWriter : public TraceWriter {
  public:
    explicit TextWriter(Put put) : put_(std::move(put)) {}

    void Write(JobOfThread job, const Node& node) override {
        if (job != job_) {
            put_((job_.number == 0 ? "Job " : "\nJob ") + std::to_string(job.number) + ", thread " +
                 std::to_string(job.thread) + (node.time == 0 ? "" : ", " + DateText(node.time)) + "\n");
            job_ = job;
        }
        WriteNode(node, 0);
    }

    void End(const TraceCounts& counts) override {
        put_((job_.number == 0 ? "" : "\n") + CountsText(counts) + "\n");
    }

  private:
    void WriteNode(const Node& node, size_t depth) {
        const std::string clock = node.time == 0 ? "" : ClockText(node.time);
        const std::string duration = node.duration ? DurationText(*node.duration) : "";
        put_(clock + std::string(kClockWidth - clock.size(), ' ') +
             std::string(kDurationWidth - std::min(kDurationWidth, duration.size()), ' ') + duration +
             (node.IsTrouble() ? " !" : "  ") + std::string(2 * depth + 1, ' ') + NodeText(node) + "\n");
        for (const Node& child : node.children) WriteNode(child, depth + 1);
    }

    Put put_;
    JobOfThread job_;
};

}  // namespace

std::unique_ptr<TraceWriter> MakeTextWriter(TraceWriter::Put put) {
    return std::make_unique<TextWriter>(std::move(put));
}

std::string NodeText(const Node& node) {
    std::string text;
    if (node.kind == NodeKind::kDeviceMode) {
        text = (node.text.empty() ? "device mode" : node.text) + ":" + FieldsText(node);
    } else {
        text = PrintableText(node.text);
    }
    if (!node.result.empty()) text += " = " + PrintableText(node.result);
    if (node.remark.empty()) return text;
    return text + (node.kind == NodeKind::kError ? " (harmless: " : " (") + node.remark + ")";
}

std::string DurationText(int64_t milliseconds) {
    if (milliseconds < 0) return "clock set";
    return GroupedNumber(static_cast<uint64_t>(milliseconds)) + " ms";
}

std::string CountsText(const TraceCounts& counts) {
    std::string text = Counted(counts.jobs, "job", "jobs") + ", " + Counted(counts.lines, "line", "lines") +
                       ", " + Counted(counts.errors, "error", "errors") + ", " +
                       Counted(counts.harmless, "harmless one", "harmless ones");
    if (counts.strays > 0)
        text += ", " + Counted(counts.strays, "line", "lines") + " cut or without their other end";
    return text;
}

}  // namespace orvex::tools::trace
