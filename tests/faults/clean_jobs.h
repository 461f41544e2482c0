// The jobs in which nothing fails, that the others are held against.
#pragma once

#include <map>

#include "tests/faults/fault_fixture.h"

using CleanJobs = std::map<JobInputs, JobRecord>;
