// Memory and handles of this process.
#pragma once

#include <cstddef>

namespace orvex {

struct ProcessFigures {
    size_t residentBytes;
    size_t peakResidentBytes;  // since the start, or since the peak was last forgotten
    size_t privateBytes;       // written memory that no other process shares
    size_t handles;            // natively open file descriptors and handles of platform/posix
};

ProcessFigures MeasureProcess();

// Resets the peak; does nothing where the system can't.
void ForgetPeak();

}  // namespace orvex
