// Late jobs of a process cost what early ones do: the driver makes the same calls and allocates the same
// blocks, in the same order.

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>

#include "tests/kit/scratch_folder.h"
#include "tests/system/endurance/helper/job_kinds.h"
#include "tests/system/faults/call_watch.h"

namespace orvex {

using namespace tools;
namespace {

constexpr int kRounds = 8;  // the first includes what a process does only once

// Returns what a job cost, call by call.
std::vector<std::string> Labels(const std::vector<WatchedCall>& calls) {
    std::vector<std::string> labels;
    for (const WatchedCall& call : calls)
        labels.push_back(call.Label() + ", " + std::to_string(call.bytes) + " bytes");
    return labels;
}

}  // namespace

TEST(SameWork, IsDoneForLateJobsAndEarlyOnes) {
    const ScratchFolder installation;
    InstallJobProfiles(installation.Path());
    DriverSession session(JobSession(installation.Path()));
    HeapWatch heap(session.Driver().Module());
    CallWatch watch(session.Driver().Module(), heap);

    std::vector<std::vector<std::string>> early;
    size_t calls = 0;
    for (int round = 0; round < kRounds; ++round) {
        for (size_t kind = 0; kind < JobKinds().size(); ++kind) {
            watch.Begin();
            watch.Enter("job");
            PrintJob(session, installation.Path(), JobKinds()[kind]);
            watch.Leave();
            std::vector<std::string> labels = Labels(watch.TakeCalls());
            calls += labels.size();
            if (round == 1) early.push_back(labels);
            if (round <= 1) continue;
            const auto other =
                std::mismatch(labels.begin(), labels.end(), early[kind].begin(), early[kind].end());
            ASSERT_TRUE(labels == early[kind]) << JobKinds()[kind].name << " in round " << round << ", call "
                                               << other.first - labels.begin() << " of " << labels.size();
        }
    }
    EXPECT_EQ(watch.OpenHandles().size(), 0u);
    std::cout << "same work: " << kRounds * JobKinds().size() << " jobs, " << calls << " calls\n";
}

}  // namespace orvex
