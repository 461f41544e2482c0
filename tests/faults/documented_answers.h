// What the driver is to do about each call that fails.
#pragma once

#include <string>
#include <vector>

#include "tests/faults/call_watch.h"

// How a failure shows, beside the hook that refuses.
enum class Shows {
    Nothing,     // output and log are as without it
    LineLost,    // one message is missing in the log
    LinesLost,   // messages may be missing in the log, but none is another
    OutputSame,  // the log may be another
    LineOnly,    // the log has the line; the output is as without it
    Line,        // the log has the line; the output may be another
    Change,      // a value falls back to its default, silently
};

// What is left behind, deliberately.
enum class Leaves { Nothing, Mutex, Directory };

// One row of the table. The texts may hold "*" for any text; an empty one stands for anything.
struct DocumentedAnswer {
    const char* call;     // as WatchedCall::Label() says it
    const char* place;    // the hook, or the print engine's call in it
    const char* before;   // the last landmark before the call
    const char* after;    // the next landmark behind it
    const char* refuses;  // the hook that refuses; null: none
    Shows shows;
    const char* line = "";  // that the log has; "{}" is the call's subject
    Leaves leaves = Leaves::Nothing;
};

// A call of the job with its place among the others.
struct PlacedCall {
    size_t number;  // as CallWatch counts
    WatchedCall call;
    std::string before, after;
};
std::vector<PlacedCall> PlaceCalls(const std::vector<WatchedCall>& calls);

bool Matches(std::string_view text, std::string_view pattern);

// The first row that fits; null when the table says nothing of such a call.
const DocumentedAnswer* FindAnswer(const PlacedCall& call);
// Rows that were never asked for, by their calls.
std::vector<std::string> UnusedAnswers(const std::vector<PlacedCall>& calls);
