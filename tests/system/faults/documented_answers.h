// What the driver is to do about each call that fails.
#pragma once

#include <string>
#include <vector>

#include "tests/system/faults/call_watch.h"
#include "tests/system/faults/job_inputs.h"

namespace orvex {

using namespace tools;
// What the printer gets.
enum class Prints {
    kAll,         // every byte that it gets of the same job without a failure
    kUntilThen,   // the bytes in front of the failing call, and nothing more
    kAllButThat,  // all but the bytes that the failing call should have written
    kAllButPage,  // all pages but the one that is being sent; without that, no thumbnail either
};

// What becomes of the log, beside the answer's own line, which comes where the call fails.
enum class Logs {
    kAll,             // every message that is there without the failure
    kNotThis,         // the message that is being written is not there
    kNotItsText,      // that message lacks a text
    kNotUntilSwitch,  // none until the log's switch is read again
    kNotUntilPage,    // none until the next page starts
    kUntilThen,       // none any more
    kChanges,         // other messages come and go
};

// How a failure shows.
struct Outcome {
    Prints prints;
    Logs logs;
    // Of Logs::kChanges: "+ message" that may come, "- message" that may go, behind the call. Each does, at
    // one failure or another. The texts may hold "*" for any text.
    std::vector<const char*> changes = {};
    // The job prints like one from these inputs, and any message may come and go that does so with them.
    JobInputs like = JobInputs::kAll;
    // The variable of the job header whose text is cut; null: none.
    const char* cut = nullptr;
};

// What is left behind, deliberately.
enum class Leaves { kNothing, kMutex, kDirectory };

// One row of the table. The texts may hold "*" for any text and "|" between alternatives; an empty one stands
// for anything.
struct DocumentedAnswer {
    const char* call;   // as WatchedCall::Label() says it
    const char* place;  // the hook, or the print engine's call in it
    // The last landmark before the call, the last two, or the file last opened in the hook.
    const char* before;
    const char* after;    // the next landmark behind it
    const char* refuses;  // the hook that refuses; null: none
    const Outcome& outcome;
    // The first message that the failure adds to the log; "{}" is what the call is about.
    const char* line = "";
    Leaves leaves = Leaves::kNothing;
};

// A call of the job with its place among the others.
struct PlacedCall {
    size_t number;  // as CallWatch counts
    WatchedCall call;
    std::string before, after;
    std::string lastTwo;  // landmarks before it: "OpenPrinterW, GetPrinterW"
    std::string file;     // last opened in the hook, and how often so far: "settings.inf 2"
};
std::vector<PlacedCall> PlaceCalls(const std::vector<WatchedCall>& calls);

// Whether a text is one of a pattern's alternatives.
bool Matches(std::string_view text, std::string_view pattern);

// The first row that fits; null when the table says nothing of such a call.
const DocumentedAnswer* FindAnswer(const PlacedCall& call);
// Alternatives of rows that were never asked for, by their calls.
std::vector<std::string> UnusedAnswers(const std::vector<PlacedCall>& calls);

}  // namespace orvex
