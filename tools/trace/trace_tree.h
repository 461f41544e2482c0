// The tree of operations in the driver's log. Every operation traces "<name>" when it begins and "</name>"
// when it ends, with its result on the line before. The lines of a thread nest; a line of the log names its
// thread, but not its process.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/trace/log_line.h"

namespace orvex::tools::trace {

enum class NodeKind {
    kOperation,
    kMessage,
    kError,
    kDeviceMode,  // a dump, folded to what changed since the thread's last one
    kStray        // text that is no line of the log, or whose operation's other end is missing
};

// A field of a device mode that differs from the thread's last dump. `before` is empty in the first dump.
struct ChangedField {
    std::string name;
    std::string before;
    std::string after;
};

struct Node {
    NodeKind kind = NodeKind::kMessage;
    std::string text = {};                 // an operation's name, a message, a dump's caption
    std::string result = {};               // of an operation, as it was traced
    std::string remark = {};               // why an error is harmless, or what is missing; else empty
    int64_t time = 0;                      // of the first line, milliseconds since 1970
    std::optional<int64_t> duration = {};  // of an operation with both ends, in milliseconds
    std::vector<ChangedField> fields = {};
    std::vector<Node> children = {};

    bool IsTrouble() const { return kind == NodeKind::kError && remark.empty(); }
};

// A job: a device's set-up and the document that is printed with it. Its number counts the jobs of the log
// from 1.
struct JobOfThread {
    uint32_t number = 0;
    uint32_t thread = 0;

    bool operator==(const JobOfThread&) const = default;
};

struct TraceCounts {
    uint64_t lines = 0;
    uint64_t logLines = 0;  // of them, those that are the log's
    uint64_t errors = 0;
    uint64_t harmless = 0;
    uint64_t strays = 0;  // lines that are not the log's, and operations with one end
    uint32_t jobs = 0;
};

class TraceTree {
  public:
    // `take` gets each outermost operation when it has ended, and each message outside of one. Operations
    // that take more than `mostBytes` of memory together are handed over in pieces, so that it stays small
    // whatever the log contains.
    using Take = std::function<void(JobOfThread, Node&&)>;
    explicit TraceTree(Take take, size_t mostBytes = size_t{16} << 20);

    // Takes the next line of the log, without its line end.
    void TakeLine(std::string_view text);
    // Hands over what has not ended. No line may follow.
    void Finish();

    const TraceCounts& Counts() const { return counts_; }

  private:
    // The last dump of a device mode, and the one that is being read.
    struct Dump {
        std::map<std::string, std::string, std::less<>> last;
        std::optional<Node> open;
        bool isPrivate = false;  // its private part is being read
    };
    struct Thread {
        JobOfThread job;
        bool inDocument = false;
        bool documentDone = false;  // a document of this job has ended
        bool jobDone = false;
        std::vector<Node> open;  // from the outermost operation to the innermost
        Dump dump;
    };

    Thread& ThreadOf(uint32_t id);
    void TakeMessage(Thread& thread, const LogLine& line);
    void BeginDump(Thread& thread, int64_t time);
    bool TakeDumpLine(Thread& thread, std::string_view message);
    void TakeField(Thread& thread, std::string_view message);
    void EndDump(Thread& thread, const char* remark = "");
    void Begin(Thread& thread, std::string_view name, int64_t time);
    void End(Thread& thread, std::string_view name, int64_t time);
    void CloseInnermost(Thread& thread);
    void CloseAll(Thread& thread);
    void Add(Thread& thread, Node&& node);
    void HandOver(Thread& thread, Node&& node);
    void HandOverPieces();
    void BeginJobIfDue(Thread& thread, bool document);
    static void FollowJob(Thread& thread, std::string_view operation);

    Take take_;
    size_t mostBytes_;
    size_t bytes_ = 0;  // about what all that is not handed over takes
    TraceCounts counts_;
    std::map<uint32_t, Thread> threads_;
    Thread* last_ = nullptr;  // of the last line
};

}  // namespace orvex::tools::trace
