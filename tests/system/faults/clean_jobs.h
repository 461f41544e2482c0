// The jobs in which nothing fails, that the others are held against.
#pragma once

#include <map>

#include "tests/system/faults/fault_fixture.h"

namespace orvex {

using namespace tools;
using CleanJobs = std::map<JobInputs, JobRecord>;

}  // namespace orvex
