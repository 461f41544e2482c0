// The driver's allowed answers to a call that fails.
//
// Up to the call, the job is as ever. From there on each hook prints and logs as ever, or as in the same job
// with one input less, or it prints nothing more and logs an error. A hook refuses only if it can't get what
// it is there to set up. No line of the log goes without another one that tells why, and none comes that is
// not documented.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/system/faults/fault_fixture.h"

namespace orvex {

// The jobs in which no call fails.
using CleanJobs = std::map<JobInputs, JobRecord>;

// Describes how a job breaks these rules after its call of number `failing`; empty if it does not.
std::vector<std::string> BrokenRules(const JobRecord& job, size_t failing, const CleanJobs& clean);

// Returns what the job deliberately leaves behind, as FaultTest::LeftBehind() says it.
std::vector<std::string> DocumentedLeftovers(const WatchedCall& failed);

// Returns whether a text is one of a pattern's alternatives: "*" is any text, "|" separates them.
bool Matches(std::string_view text, std::string_view pattern);

}  // namespace orvex
