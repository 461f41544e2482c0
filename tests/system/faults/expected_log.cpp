#include "tests/system/faults/expected_log.h"

#include <algorithm>

namespace orvex {

using namespace tools;
namespace {

// How many messages were logged when the call came.
size_t LoggedBefore(const std::vector<WatchedCall>& calls, size_t number) {
    return static_cast<size_t>(
        std::count_if(calls.begin(), calls.begin() + static_cast<ptrdiff_t>(number),
                      [](const WatchedCall& call) { return call.Label() == "WriteFile orvexgdi.txt"; }));
}

// How many messages were logged, or would have been, when the log goes on as ever.
size_t LoggedBeforeItGoesOn(Logs logs, const std::vector<WatchedCall>& calls, size_t number) {
    const auto before = [&](const char* label, const char* place) {
        const auto next = std::find_if(calls.begin() + static_cast<ptrdiff_t>(number) + 1, calls.end(),
                                       [&](const WatchedCall& call) {
                                           return Matches(call.Label(), label) && Matches(call.place, place);
                                       });
        return LoggedBefore(calls, static_cast<size_t>(next - calls.begin()));
    };
    switch (logs) {
        case Logs::kNotThis:
        case Logs::kNotItsText:
            return LoggedBefore(calls, number) + 1;
        case Logs::kNotUntilSwitch:
            return before("CreateFileA orvexgdi.dat", "*");
        case Logs::kNotUntilPage:
            return before("*", "DrvStartPage*");
        case Logs::kUntilThen:
            return LoggedBefore(calls, calls.size());
        case Logs::kAll:
        case Logs::kChanges:
            break;
    }
    return LoggedBefore(calls, number);
}

// The answer's line with the last word of what the call is about.
std::string LineOf(const DocumentedAnswer& answer, const WatchedCall& call) {
    std::string line = answer.line;
    const size_t at = line.find("{}");
    return at == std::string::npos
               ? line
               : line.replace(at, 2, call.subject.substr(call.subject.find_last_of(' ') + 1));
}

bool HasTextTakenOut(const std::string& message, const std::string& whole) {
    if (message.size() >= whole.size()) return false;
    const auto [end, unused] = std::mismatch(message.begin(), message.end(), whole.begin());
    return whole.ends_with(message.substr(static_cast<size_t>(end - message.begin())));
}

// What the clean log becomes, but for the outcome's changes. `came` is the message at the failing call.
std::vector<std::string> ExpectedLog(const DocumentedAnswer& answer, const PlacedCall& failing,
                                     const JobRecord& clean, const std::string& came) {
    const Logs logs = answer.outcome.logs;
    const size_t before = LoggedBefore(clean.calls, failing.number);
    const size_t behind = LoggedBeforeItGoesOn(logs, clean.calls, failing.number);
    std::vector<std::string> log(clean.log.begin(), clean.log.begin() + static_cast<ptrdiff_t>(before));
    if (logs == Logs::kNotItsText) {
        log.push_back(HasTextTakenOut(came, clean.log[before]) ? came
                                                               : clean.log[before] + " without a text");
    } else if (*answer.line != '\0') {
        const std::string line = LineOf(answer, failing.call);
        log.push_back(Matches(came, line) ? came : line);
    }
    log.insert(log.end(), clean.log.begin() + static_cast<ptrdiff_t>(behind), clean.log.end());
    return log;
}

}  // namespace

std::vector<std::string> Difference(const std::vector<std::string>& log,
                                    const std::vector<std::string>& other) {
    // common[i][j]: the most messages that log from i on and other from j on have in common, in order
    std::vector<std::vector<size_t>> common(log.size() + 1, std::vector<size_t>(other.size() + 1));
    for (size_t i = log.size(); i-- > 0;) {
        for (size_t j = other.size(); j-- > 0;) {
            common[i][j] =
                log[i] == other[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    std::vector<std::string> difference;
    size_t i = 0, j = 0;
    while (i < log.size() || j < other.size()) {
        if (i < log.size() && j < other.size() && log[i] == other[j]) {
            ++i, ++j;
        } else if (j == other.size() || (i < log.size() && common[i + 1][j] >= common[i][j + 1])) {
            difference.push_back("+ " + log[i++]);
        } else {
            difference.push_back("- " + other[j++]);
        }
    }
    return difference;
}

std::vector<std::string> LogFaults(const DocumentedAnswer& answer, const PlacedCall& failing,
                                   const CleanJobs& clean, const std::vector<std::string>& log,
                                   SeenChanges& seen) {
    const Outcome& outcome = answer.outcome;
    const JobRecord& job = clean.at(JobInputs::kAll);
    const size_t before = LoggedBefore(job.calls, failing.number);
    const std::string came = before < log.size() ? log[before] : "";
    std::vector<std::string> faults = Difference(log, ExpectedLog(answer, failing, job, came));
    const auto [end, unused] = std::mismatch(log.begin(), log.end(), job.log.begin(), job.log.end());
    if (static_cast<size_t>(end - log.begin()) < before) return faults;  // nothing may change before the call

    const std::vector<std::string> like = Difference(clean.at(outcome.like).log, job.log);
    std::erase_if(faults, [&](const std::string& change) {
        for (const char* documented : outcome.changes) {
            if (Matches(change, documented)) return seen.insert({&outcome, documented}), true;
        }
        return std::find(like.begin(), like.end(), change) != like.end();
    });
    return faults;
}

}  // namespace orvex
