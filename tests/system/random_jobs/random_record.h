// Random device modes and pages.
#pragma once

#include "tests/plain/driver/world.h"
#include "tests/system/corrupted_record.h"
#include "tests/system/random_jobs/random.h"

namespace orvex {

// Returns a caller's device mode: mostly settings that make pages differ, and now and then values out of
// range and records that end early.
Record RandomRecord(Random& random, const plain::Installation& installation);

// Returns a page bitmap of at most `mostWidth` x `mostHeight` pixels.
plain::PageBits RandomPage(Random& random, int32_t mostWidth, int32_t mostHeight);

}  // namespace orvex
