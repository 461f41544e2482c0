// What this process holds of the machine: memory and handles.
#pragma once

#include <cstddef>

namespace orvex {

struct ProcessFigures {
    size_t residentBytes;
    size_t peakResidentBytes;  // since the start, or since the peak was last forgotten
    size_t privateBytes;       // written memory that is the process' own
    size_t handles;            // natively open file descriptors and handles of posix/
};

ProcessFigures MeasureProcess();

// Lets the peak begin anew; does nothing where the system can't.
void ForgetPeak();

}  // namespace orvex
