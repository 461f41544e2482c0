#include <nlohmann/json.hpp>

#include "tools/trace/trace_writer.h"

namespace orvex::tools::trace {

namespace {

using Json = nlohmann::ordered_json;

const char* KindName(const Node& node) {
    switch (node.kind) {
        case NodeKind::kOperation:
            return "operation";
        case NodeKind::kMessage:
            return "message";
        case NodeKind::kError:
            return node.IsTrouble() ? "error" : "harmless error";
        case NodeKind::kDeviceMode:
            return "device mode";
        case NodeKind::kStray:
            break;
    }
    return "stray";
}

Json JsonOf(const Node& node) {
    Json json = {{"kind", KindName(node)}, {"text", node.text}};
    if (node.time != 0) json["time"] = DateText(node.time) + "T" + ClockText(node.time) + "Z";
    if (node.duration) json["ms"] = *node.duration;
    if (!node.result.empty()) json["result"] = node.result;
    if (!node.remark.empty()) json["remark"] = node.remark;
    for (const ChangedField& field : node.fields) {
        json["changed"][field.name] = {{"before", field.before}, {"after", field.after}};
    }
    for (const Node& child : node.children) json["children"].push_back(JsonOf(child));
    return json;
}

// An array of the outermost operations, each with its job and thread, one on a line.
class JsonWriter : public TraceWriter {
  public:
    explicit JsonWriter(Put put) : put_(std::move(put)) {}

    void Begin() override { put_("["); }

    void Write(JobOfThread job, const Node& node) override {
        Json json = {{"job", job.number}, {"thread", job.thread}};
        json.update(JsonOf(node));
        put_((first_ ? "\n" : ",\n") + json.dump(-1, ' ', false, Json::error_handler_t::replace));
        first_ = false;
    }

    void End(const TraceCounts&) override { put_("\n]\n"); }

  private:
    Put put_;
    bool first_ = true;
};

}  // namespace

std::unique_ptr<TraceWriter> MakeJsonWriter(TraceWriter::Put put) {
    return std::make_unique<JsonWriter>(std::move(put));
}

}  // namespace orvex::tools::trace
