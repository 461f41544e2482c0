#include "tools/trace/trace_tree.h"

#include <algorithm>

namespace orvex::tools::trace {

namespace {

constexpr size_t kMostThreads = 1000;
constexpr size_t kMostNested = 64;
constexpr size_t kMostFields = 200;
constexpr size_t kMostFieldBytes = 260;

// The loader of profiles traces its beginning alone.
constexpr std::string_view kNeverEnds = "zvc_load_profile";

constexpr char kGoesOn[] = "it goes on below";
constexpr char kContinued[] = "continued";
constexpr char kNoBegin[] = "its beginning is not in the log";
constexpr char kNoEnd[] = "its end is not in the log";

std::string_view Trimmed(std::string_view text) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

// Returns the text between `before` and `after`; empty if these do not enclose it.
std::string_view Between(std::string_view text, std::string_view before, std::string_view after) {
    if (text.size() <= before.size() + after.size() || !text.starts_with(before) || !text.ends_with(after))
        return {};
    return text.substr(before.size(), text.size() - before.size() - after.size());
}

bool IsName(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= 'a' && letter <= 'z') || letter == '_' || letter == '-';
    });
}

// Returns about how much memory a node takes by itself, and with all below it.
size_t OwnBytesOf(const Node& node) {
    size_t bytes = sizeof node + node.text.size();
    for (const ChangedField& field : node.fields)
        bytes += sizeof field + field.before.size() + field.after.size();
    return bytes;
}
size_t BytesOf(const Node& node) {
    size_t bytes = OwnBytesOf(node);
    for (const Node& child : node.children) bytes += BytesOf(child);
    return bytes;
}

bool IsHook(std::string_view operation) {
    return operation.starts_with("Drv");
}

}  // namespace

TraceTree::TraceTree(Take take, size_t mostBytes) : take_(std::move(take)), mostBytes_(mostBytes) {}

void TraceTree::TakeLine(std::string_view text) {
    if (text.ends_with('\r')) text.remove_suffix(1);
    if (text.empty()) return;  // the end of a message that ends its line itself
    ++counts_.lines;
    if (const std::optional<LogLine> line = ParseLogLine(text)) {
        ++counts_.logLines;
        Thread& thread = ThreadOf(line->thread);
        last_ = &thread;
        if (!TakeDumpLine(thread, line->message)) TakeMessage(thread, *line);
    } else {
        ++counts_.strays;
        Thread& thread = last_ != nullptr ? *last_ : ThreadOf(0);
        Add(thread, {.kind = NodeKind::kStray, .text = std::string(text), .remark = "not a line of the log"});
    }
    if (bytes_ > mostBytes_) HandOverPieces();
}

void TraceTree::Finish() {
    for (auto& [id, thread] : threads_) CloseAll(thread);
    threads_.clear();
    last_ = nullptr;
}

TraceTree::Thread& TraceTree::ThreadOf(uint32_t id) {
    if (threads_.size() >= kMostThreads && !threads_.contains(id)) Finish();
    Thread& thread = threads_[id];
    thread.job.thread = id;
    return thread;
}

void TraceTree::TakeMessage(Thread& thread, const LogLine& line) {
    const std::string_view message = line.message;
    if (line.level == Level::kTrace) {
        if (const std::string_view name = Between(message, "</", ">"); IsName(name))
            return End(thread, name, line.time);
        if (const std::string_view name = Between(message, "<", ">"); IsName(name))
            return Begin(thread, name, line.time);
        if (message.starts_with("pdm:")) return BeginDump(thread, line.time);
        if (message.starts_with("Return: ") && !thread.open.empty()) {
            thread.open.back().result = message.substr(8);
            return;
        }
    }
    if (thread.open.empty() && message.starts_with("JobId:")) {
        BeginJobIfDue(thread, true);
        thread.documentDone = true;
    }
    Node node{.kind = NodeKind::kMessage, .text = std::string(message), .time = line.time};
    if (line.level == Level::kError) {
        node.kind = NodeKind::kError;
        node.remark = HarmlessReason(message);
        ++(node.remark.empty() ? counts_.errors : counts_.harmless);
    }
    Add(thread, std::move(node));
}

// A caption is the line before the dump, such as "pdmIn:".
void TraceTree::BeginDump(Thread& thread, int64_t time) {
    thread.dump.open.emplace(Node{.kind = NodeKind::kDeviceMode, .time = time});
    thread.dump.isPrivate = false;
    if (thread.open.empty() || thread.open.back().children.empty()) return;
    std::vector<Node>& siblings = thread.open.back().children;
    const std::string_view caption = siblings.back().text;
    if (siblings.back().kind != NodeKind::kMessage || !caption.starts_with("pdm") || !caption.ends_with(':'))
        return;
    thread.dump.open->text = caption.substr(0, caption.size() - 1);
    siblings.pop_back();
}

bool TraceTree::TakeDumpLine(Thread& thread, std::string_view message) {
    if (!thread.dump.open) return false;
    if (message == "<Public-DevMode>" || message == "</Public-DevMode>") return true;
    if (message == "<Private-DevMode>") {
        thread.dump.isPrivate = true;
    } else if (message == "</Private-DevMode>") {
        EndDump(thread);
    } else if (message.find("= ") != std::string_view::npos && message.front() != '<') {
        TakeField(thread, message);
    } else {
        EndDump(thread, "the dump is cut");
        return false;
    }
    return true;
}

void TraceTree::TakeField(Thread& thread, std::string_view message) {
    const size_t equals = message.find("= ");
    std::string name(Trimmed(message.substr(0, equals)).substr(0, kMostFieldBytes));
    // Both parts of the record have a paper size.
    if (thread.dump.isPrivate && name.starts_with("dm")) name = "private " + name;
    const std::string_view value = message.substr(equals + 2).substr(0, kMostFieldBytes);
    auto& last = thread.dump.last;
    const auto found = last.find(name);
    if (found == last.end()) {
        if (last.size() >= kMostFields) return;
        thread.dump.open->fields.push_back({name, {}, std::string(value)});
        last.emplace(name, value);
    } else if (found->second != value) {
        if (thread.dump.open->fields.size() >= kMostFields) return;
        thread.dump.open->fields.push_back({name, found->second, std::string(value)});
        found->second = value;
    }
}

void TraceTree::EndDump(Thread& thread, const char* remark) {
    Node dump = std::move(*thread.dump.open);
    thread.dump.open.reset();
    dump.remark = remark;
    Add(thread, std::move(dump));
}

void TraceTree::Begin(Thread& thread, std::string_view name, int64_t time) {
    if (name == kNeverEnds) return Add(thread, {.text = std::string(name), .time = time});
    if (IsHook(name)) CloseAll(thread);  // hooks do not nest, so an end was lost
    if (thread.open.size() >= kMostNested) {
        ++counts_.strays;
        return Add(
            thread,
            {.kind = NodeKind::kStray, .text = std::string(name), .remark = "nested too deep", .time = time});
    }
    if (thread.open.empty()) {
        BeginJobIfDue(thread, name == "DrvEnablePDEV" || name == "DrvStartDoc");
    }
    thread.open.push_back({.kind = NodeKind::kOperation, .text = std::string(name), .time = time});
    bytes_ += OwnBytesOf(thread.open.back());
}

void TraceTree::End(Thread& thread, std::string_view name, int64_t time) {
    const auto begun = std::find_if(thread.open.rbegin(), thread.open.rend(),
                                    [name](const Node& node) { return node.text == name; });
    if (begun == thread.open.rend()) {
        ++counts_.strays;
        Add(thread, {.kind = NodeKind::kStray, .text = std::string(name), .remark = kNoBegin, .time = time});
        if (thread.open.empty()) FollowJob(thread, name);
        return;
    }
    for (auto inner = begun - thread.open.rbegin(); inner > 0; --inner) CloseInnermost(thread);
    thread.open.back().duration = time - thread.open.back().time;
    CloseInnermost(thread);
}

void TraceTree::CloseInnermost(Thread& thread) {
    Node node = std::move(thread.open.back());
    thread.open.pop_back();
    if (!node.duration) {
        ++counts_.strays;
        node.remark = kNoEnd;
    }
    if (thread.open.empty()) {
        const std::string name = node.text;
        HandOver(thread, std::move(node));
        FollowJob(thread, name);
    } else {
        thread.open.back().children.push_back(std::move(node));
    }
}

void TraceTree::CloseAll(Thread& thread) {
    if (thread.dump.open) EndDump(thread, "the dump is cut");
    while (!thread.open.empty()) CloseInnermost(thread);
}

void TraceTree::Add(Thread& thread, Node&& node) {
    bytes_ += OwnBytesOf(node);
    if (thread.open.empty()) {
        HandOver(thread, std::move(node));
    } else {
        thread.open.back().children.push_back(std::move(node));
    }
}

void TraceTree::HandOver(Thread& thread, Node&& node) {
    if (thread.job.number == 0) thread.job.number = ++counts_.jobs;
    bytes_ -= std::min(bytes_, BytesOf(node));
    take_(thread.job, std::move(node));
}

// Hands over what each thread has so far; its operations stay open.
void TraceTree::HandOverPieces() {
    for (auto& [id, thread] : threads_) {
        if (thread.open.empty()) continue;
        Node piece;
        for (size_t depth = thread.open.size(); depth-- > 0;) {
            Node& open = thread.open[depth];
            std::vector<Node> children = std::move(open.children);
            open.children.clear();
            Node outer = open;
            outer.children = std::move(children);
            if (depth + 1 < thread.open.size()) outer.children.push_back(std::move(piece));
            piece = std::move(outer);
            if (depth == 0) piece.remark = kGoesOn;
            open.remark = kContinued;
        }
        HandOver(thread, std::move(piece));
    }
    bytes_ = 0;
}

void TraceTree::BeginJobIfDue(Thread& thread, bool document) {
    const bool next =
        thread.job.number == 0 || thread.jobDone || (document && thread.documentDone && !thread.inDocument);
    if (!next) return;
    thread.job.number = ++counts_.jobs;
    thread.jobDone = false;
    thread.documentDone = false;
    thread.inDocument = false;
}

void TraceTree::FollowJob(Thread& thread, std::string_view operation) {
    if (operation == "DrvStartDoc") thread.inDocument = true;
    if (operation == "DrvEndDoc") {
        thread.inDocument = false;
        thread.documentDone = true;
    }
    // A reset disables the old device in the middle of a document.
    if (operation == "DrvDisablePDEV" && !thread.inDocument) thread.jobDone = true;
}

}  // namespace orvex::tools::trace
