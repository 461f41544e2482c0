// The bytes that a job prints in which a call fails, from those of jobs in which none does.
#pragma once

#include <string>

#include "tests/system/faults/clean_jobs.h"
#include "tests/system/faults/documented_answers.h"

namespace orvex {

using namespace tools;
// What differs from the outcome, in words; empty when nothing does.
std::string OutputFault(const Outcome& outcome, const PlacedCall& failing, const CleanJobs& clean,
                        const std::string& written);

}  // namespace orvex
