// The log of a job in which a call fails, from that of a job in which none does.
#pragma once

#include <set>
#include <string>

#include "tests/system/faults/clean_jobs.h"
#include "tests/system/faults/documented_answers.h"

namespace orvex {

using namespace tools;
// The changes of an outcome that came to pass.
using SeenChanges = std::set<std::pair<const Outcome*, std::string>>;

// By which messages the log differs from what the answer says, as Difference() does. Notes the outcome's
// changes that it sees.
std::vector<std::string> LogFaults(const DocumentedAnswer& answer, const PlacedCall& failing,
                                   const CleanJobs& clean, const std::vector<std::string>& log,
                                   SeenChanges& seen);

// By which messages a log differs from another: "+ new", "- missing".
std::vector<std::string> Difference(const std::vector<std::string>& log,
                                    const std::vector<std::string>& other);

}  // namespace orvex
