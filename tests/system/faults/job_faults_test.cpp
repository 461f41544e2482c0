// One job after another, each with one failing call, over all kinds of calls that the job makes.

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <tuple>

#include "tests/system/faults/documented_answers.h"
#include "tests/system/faults/expected_log.h"
#include "tests/system/faults/expected_output.h"
#include "tests/system/faults/fault_fixture.h"

namespace orvex {

using namespace tools;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// The hook of a place, without its number in the job.
std::string HookOf(const std::string& place) {
    std::string hook;
    for (const char c : place) {
        if (c < '0' || c > '9') hook += c;
    }
    return hook;
}

const std::string kThumbnails = "thumbnail's ";

// What calls must have in common to be of one kind: rows are told apart by page; the log's calls, and the
// allocations of the thumbnail's encoder, by nothing but the function.
std::tuple<std::string, std::string, std::string, std::string> KindOf(const PlacedCall& placed) {
    const WatchedCall& call = placed.call;
    if (call.function == "HPCRLIB_RasterRow") return {call.function, call.place, "", ""};
    if (call.subject == "orvexgdi.txt") return {call.Label(), "", "", ""};
    const bool inThumbnail = call.bytes > 0 && call.subject.empty() && placed.after == "HPCRLIB_PageStart";
    return {inThumbnail ? kThumbnails + call.function : call.Label(), HookOf(call.place), placed.before,
            placed.after};
}

// What does the same wherever it fails: it gives something back, or asks for the installation folder.
bool IsAlikeEverywhere(const WatchedCall& call) {
    return Matches(call.Label(), "CloseHandle*|FindClose*|SHGetSpecialFolderPathW|PathAppendW *|calloc 520");
}

// A job costs more in the Windows build, so that there the first calls have to do but in the thumbnail.
constexpr bool kLastCallsToo =
#ifdef _WIN32
    false;
#else
    true;
#endif

// The first and the last call of each kind, of what is alike everywhere the first; of a page's rows the
// first, second, middle and last. All calls, which take minutes, where the environment has ORVEX_EVERY_CALL.
std::vector<PlacedCall> ChooseCalls(const std::vector<PlacedCall>& calls) {
    if (getenv("ORVEX_EVERY_CALL") != nullptr) return calls;
    std::map<std::tuple<std::string, std::string, std::string, std::string>, std::vector<size_t>> kinds;
    for (const PlacedCall& call : calls) kinds[KindOf(call)].push_back(call.number);
    std::vector<size_t> chosen;
    for (const auto& [kind, numbers] : kinds) {
        const bool rows = std::get<0>(kind) == "HPCRLIB_RasterRow";
        const bool thumbnail = std::get<0>(kind).starts_with(kThumbnails);
        const bool lastToo =
            rows || thumbnail || (kLastCallsToo && !IsAlikeEverywhere(calls[numbers.front()].call));
        chosen.push_back(numbers.front());
        if (numbers.size() > 1 && lastToo) chosen.push_back(numbers.back());
        if (rows) {
            chosen.push_back(numbers[1]);
            chosen.push_back(numbers[numbers.size() / 2]);
        }
    }
    std::sort(chosen.begin(), chosen.end());
    std::vector<PlacedCall> result;
    for (const size_t number : chosen) result.push_back(calls[number]);
    return result;
}

bool PrintsAll(const Outcome& outcome) {
    return outcome.prints == Prints::kAll && outcome.like == JobInputs::kAll && outcome.cut == nullptr;
}

// A job in which a call fails, or none.
struct PlannedJob {
    std::optional<PlacedCall> failing;
    const DocumentedAnswer* answer;
};

// Behind each job whose output a failure may change comes one that shows what the failure spoilt: one that
// must print the same in spite of a failure of its own, as long as there are such, or one without.
std::vector<PlannedJob> PlanJobs(const std::vector<PlacedCall>& calls) {
    const PlannedJob clean = {std::nullopt, nullptr};
    std::vector<PlannedJob> changing, same, plan;
    for (const PlacedCall& call : calls) {
        const DocumentedAnswer* answer = FindAnswer(call);
        (answer != nullptr && PrintsAll(answer->outcome) ? same : changing).push_back({call, answer});
    }
    size_t next = 0;
    for (PlannedJob& job : changing) {
        plan.push_back(std::move(job));
        plan.push_back(next < same.size() ? same[next++] : clean);
    }
    plan.insert(plan.end(), same.begin() + static_cast<ptrdiff_t>(next), same.end());
    plan.push_back(clean);
    return plan;
}

class JobFaults : public FaultTest {
  protected:
    void ExpectAnswer(const PlacedCall& failing, const DocumentedAnswer& answer, const JobRecord& job);
    void ExpectHooks(const PlacedCall& failing, const DocumentedAnswer& answer, const JobRecord& job);
    void ExpectNothingLeft(const DocumentedAnswer& answer);
    void ExpectClean(const JobRecord& job) {
        EXPECT_EQ(job.Refusals(), clean.Refusals());
        EXPECT_TRUE(job.written == clean.written) << "the output is another";
        EXPECT_TRUE(job.log == clean.log) << testing::PrintToString(Difference(job.log, clean.log));
    }

    // What the job prints from other inputs, which is something else each time.
    void PrintFromOtherInputs();
    // Every change of the log that the jobs' outcomes name has come to pass.
    void ExpectChangesSeen(const std::vector<PlannedJob>& plan);

    JobRecord clean;
    CleanJobs cleanJobs;
    SeenChanges seen;
};

void JobFaults::PrintFromOtherInputs() {
    cleanJobs[JobInputs::kAll] = clean;
    for (const JobInputs inputs :
         {JobInputs::kNoThumbnail, JobInputs::kNoChunkPages, JobInputs::kNoLabels, JobInputs::kNoProfile,
          JobInputs::kNoColors, JobInputs::kNoFirstMode, JobInputs::kNoSecondMode}) {
        SetInputs(inputs);
        const JobRecord job = Run();
        EXPECT_THAT(job.Refusals(), IsEmpty());
        for (const auto& [other, otherJob] : cleanJobs) EXPECT_TRUE(job.written != otherJob.written);
        cleanJobs[inputs] = job;
    }
    SetInputs(JobInputs::kAll);
    ExpectClean(Run());
}

void JobFaults::ExpectChangesSeen(const std::vector<PlannedJob>& plan) {
    std::set<std::string> unseen;
    for (const PlannedJob& planned : plan) {
        if (planned.answer == nullptr) continue;
        const Outcome& outcome = planned.answer->outcome;
        for (const char* change : outcome.changes) {
            if (!seen.contains({&outcome, change}))
                unseen.insert(std::string(planned.answer->call) + ": " + change);
        }
    }
    EXPECT_THAT(unseen, IsEmpty());
}

void JobFaults::ExpectHooks(const PlacedCall& failing, const DocumentedAnswer& answer, const JobRecord& job) {
    if (answer.refuses == nullptr) {
        EXPECT_THAT(job.Refusals(), IsEmpty());
        return;
    }
    EXPECT_THAT(job.Refusals(), ElementsAre(answer.refuses));
    const DWORD code = LastErrorOf(failing.call);
    for (const HookAnswer& each : job.answers) {
        if (!each.accepted && code != 0) {
            EXPECT_EQ(each.lastError, code);
        }
    }
}

void JobFaults::ExpectNothingLeft(const DocumentedAnswer& answer) {
    const std::vector<std::string> left = LeftBehind();
    switch (answer.leaves) {
        case Leaves::kNothing:
            EXPECT_THAT(left, IsEmpty());
            break;
        case Leaves::kMutex:
            EXPECT_THAT(left, ElementsAre("open: orvexgdi.txt"));
            break;
        case Leaves::kDirectory:
            EXPECT_THAT(left, ElementsAre("another current directory"));
            break;
    }
    Watch().CloseHandles();
}

void JobFaults::ExpectAnswer(const PlacedCall& failing, const DocumentedAnswer& answer,
                             const JobRecord& job) {
    ASSERT_GT(job.calls.size(), failing.number) << "the call did not come";
    EXPECT_EQ(job.calls[failing.number].Label(), failing.call.Label());
    ExpectHooks(failing, answer, job);
    EXPECT_THAT(LogFaults(answer, failing, cleanJobs, job.log, seen), IsEmpty());
    EXPECT_EQ(OutputFault(answer.outcome, failing, cleanJobs, job.written), "");
    ExpectNothingLeft(answer);
}

}  // namespace

TEST_F(JobFaults, AreAnsweredAsDocumentedAndLeaveNothingBehind) {
    Run();  // what a process does only once, is done
    clean = Run();
    ASSERT_THAT(clean.Refusals(), IsEmpty());
    ASSERT_THAT(LeftBehind(), IsEmpty());
    const std::vector<PlacedCall> calls = PlaceCalls(clean.calls);
    EXPECT_THAT(UnusedAnswers(calls), IsEmpty());
    PrintFromOtherInputs();

    size_t faults = 0;
    const std::vector<PlannedJob> plan = PlanJobs(ChooseCalls(calls));
    for (const PlannedJob& planned : plan) {
        if (!planned.failing) {
            ExpectClean(Run());
            EXPECT_THAT(LeftBehind(), IsEmpty());
            continue;
        }
        const PlacedCall& failing = *planned.failing;
        SCOPED_TRACE(failing.call.Label() + " in " + failing.call.place + ", call " +
                     std::to_string(failing.number) + " behind " + failing.before + ", before " +
                     failing.after);
        if (planned.answer == nullptr) {
            ADD_FAILURE() << "nothing is known of this call";
            continue;
        }
        ExpectAnswer(failing, *planned.answer, Run(failing.number));
        ++faults;
    }
    ExpectChangesSeen(plan);
    std::cout << faults << " faults in " << plan.size() << " jobs, out of " << calls.size() << " calls\n";
}

#ifdef _WIN32
// Natively the driver is a part of the program, which has worked the path out long before.
TEST_F(JobFaults, WhileTheLogsPathIsWorkedOutLoseNoMoreThanLines) {
    Reload();
    clean = Run();
    const std::string path = "malloc " + std::to_string(Session().Driver().LogName().size() + 1);
    std::vector<std::string> faults;
    for (const PlacedCall& call : PlaceCalls(clean.calls)) {
        if (!Matches(call.call.Label(), "GetModuleFileNameA|" + path)) continue;
        SCOPED_TRACE(call.call.Label());
        Reload();
        const JobRecord job = Run(call.number);
        faults.push_back(job.calls.at(call.number).function);
        EXPECT_THAT(job.Refusals(), IsEmpty());
        EXPECT_TRUE(job.written == clean.written);
        EXPECT_THAT(Difference(job.log, clean.log), Each(StartsWith("- ")));
        EXPECT_THAT(LeftBehind(), IsEmpty());
        ExpectClean(Run());
    }
    // of the path of the file with the log's switch, and of the log's own
    EXPECT_THAT(faults, ElementsAre("GetModuleFileNameA", "malloc", "GetModuleFileNameA", "malloc"));
}
#endif

}  // namespace orvex
