// The fault job with one failing call after another, over all kinds of calls that it makes. Whatever fails,
// nothing is left behind, the answer is a documented one, and the next job prints the very same bytes as
// ever.
//
// Each function is a test of its own: `faults_tests --gtest_filter='*/CreateFileW'`. GTEST_TOTAL_SHARDS and
// GTEST_SHARD_INDEX split the sweep. With ORVEX_EVERY_CALL in the environment every single call fails, which
// takes minutes.

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>

#include "tests/system/faults/documented_answers.h"
#include "tests/system/faults/fault_fixture.h"

namespace orvex {

using testing::IsEmpty;

namespace {

// The driver that all tests of the sweep share, and its jobs in which nothing fails.
class Sweep : public FaultTest {
  public:
    Sweep();
    void TestBody() override {}

    // Chooses calls of a function: the first and the last of each kind.
    std::vector<size_t> CallsOf(const std::string& function) const;
    // Prints the job with that call failing; returns whether it came to its end.
    bool PrintsToItsEnd(size_t failing);
    void ExpectPrintsAsEver();

  private:
    JobRecord usual_;
    CleanJobs clean_;
};

Sweep::Sweep() {
    Run();  // what a process does only once
    usual_ = Run();
    for (int inputs = static_cast<int>(JobInputs::kCount); inputs-- > 0;) {
        SetInputs(JobInputs{inputs});
        clean_[JobInputs{inputs}] = Run();
        EXPECT_EQ(clean_[JobInputs{inputs}].SameAs(usual_), JobInputs{inputs} == JobInputs::kAll);
        EXPECT_THAT(LeftBehind(), IsEmpty());
    }
    for (const HookRecord& hook : usual_.hooks) EXPECT_TRUE(hook.accepted) << hook.name;
}

// Calls are of one kind if they have the same subject and the same hook, and come after the same call; those
// of the log wherever they come. The size of an allocation does not count.
std::vector<size_t> Sweep::CallsOf(const std::string& function) const {
    std::map<std::string, std::vector<size_t>> kinds;
    std::string before;
    for (size_t i = 0; i < usual_.calls.size(); ++i) {
        const WatchedCall& call = usual_.calls[i];
        const std::string name = call.function + " " + call.subject;
        const bool ofLog = call.subject.starts_with("orvexgdi");
        if (call.function == function) {
            std::string place = call.place;
            std::erase_if(place, [](char c) { return c >= '0' && c <= '9'; });
            kinds[ofLog ? name : name + ", " + place + ", " + before].push_back(i);
        }
        if (!ofLog) before = name;
    }
    std::set<size_t> chosen;
    for (const auto& [kind, calls] : kinds) {
        if (getenv("ORVEX_EVERY_CALL") != nullptr) chosen.insert(calls.begin(), calls.end());
        chosen.insert(calls.front());
        chosen.insert(calls.back());
    }
    return {chosen.begin(), chosen.end()};
}

bool Sweep::PrintsToItsEnd(size_t failing) {
    const WatchedCall& call = usual_.calls[failing];
    SCOPED_TRACE(call.Label() + " in " + call.place + ", call " + std::to_string(failing) + " of the job");
    const JobRecord job = Run(failing);
    EXPECT_GT(job.calls.size(), failing);
    EXPECT_EQ(job.calls.at(failing).Label(), call.Label());
    EXPECT_THAT(BrokenRules(job, failing, clean_), IsEmpty());
    EXPECT_EQ(LeftBehind(), DocumentedLeftovers(call));
    return std::any_of(job.hooks.begin(), job.hooks.end(), [](const HookRecord& hook) {
        return hook.name == "DrvEndDoc 1" && !hook.output.empty();
    });
}

void Sweep::ExpectPrintsAsEver() {
    EXPECT_TRUE(Run().SameAs(usual_)) << "the job after a failing one prints or logs something else";
    EXPECT_THAT(LeftBehind(), IsEmpty());
}

class JobFaults : public testing::TestWithParam<std::string> {
  protected:
    static void SetUpTestSuite() { sweep = std::make_unique<Sweep>(); }
    static void TearDownTestSuite() {
        sweep->ExpectPrintsAsEver();
        sweep.reset();
    }

    static inline std::unique_ptr<Sweep> sweep;
};

// The watched functions that the job calls. Those of the log's rotation, and what a process asks only once,
// are tried elsewhere.
std::vector<std::string> FunctionsOfTheJob() {
    std::set<std::string> names = {"malloc", "calloc", "LocalAlloc"};
    for (const WatchedFunction& function : WatchedFunctions()) names.insert(function.name);
    for (const char* other :
         {"DeleteFileA", "GetModuleFileNameA", "MoveFileA", "PathFileExistsA", "ReleaseMutex"})
        names.erase(other);
    return {names.begin(), names.end()};
}

}  // namespace

TEST_P(JobFaults, AreAnsweredAsDocumentedAndLeaveNothingBehind) {
    const std::vector<size_t> calls = sweep->CallsOf(GetParam());
    ASSERT_FALSE(calls.empty());
    bool unproven = false;
    for (const size_t call : calls) {
        // A job that comes to its end prints known bytes, which shows that the one before spoiled nothing.
        const bool ends = sweep->PrintsToItsEnd(call);
        if (unproven && !ends) sweep->ExpectPrintsAsEver();
        unproven = !ends && !unproven;
    }
    if (unproven) sweep->ExpectPrintsAsEver();
    std::cout << calls.size() << " faults\n";
}

INSTANTIATE_TEST_SUITE_P(Of, JobFaults, testing::ValuesIn(FunctionsOfTheJob()),
                         [](const auto& function) { return function.param; });

#ifdef _WIN32
// Natively the driver is part of the program, which has settled the path long before.
TEST_F(FaultTest, LosesNoMoreThanLinesWhileTheLogsPathIsSettled) {
    Reload();
    const JobRecord usual = Run();
    const std::string path = "malloc " + std::to_string(Session().Driver().LogName().size() + 1);
    std::vector<std::string> failed;
    for (size_t i = 0; i < usual.calls.size(); ++i) {
        if (!Matches(usual.calls[i].Label(), "GetModuleFileNameA|" + path)) continue;
        Reload();
        const JobRecord job = Run(i);
        failed.push_back(job.calls.at(i).function);
        for (size_t h = 0; h < usual.hooks.size(); ++h) {
            EXPECT_TRUE(job.hooks.at(h).accepted && job.hooks[h].output == usual.hooks[h].output);
            EXPECT_THAT(job.hooks[h].log, testing::IsSubsetOf(usual.hooks[h].log));
        }
        EXPECT_THAT(LeftBehind(), IsEmpty());
        EXPECT_TRUE(Run().SameAs(usual));
    }
    // The path of the file with the log's switch comes first, then the log's own.
    EXPECT_THAT(failed, testing::ElementsAre("GetModuleFileNameA", "malloc", "GetModuleFileNameA", "malloc"));
}
#endif

}  // namespace orvex
