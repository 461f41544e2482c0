// The job header: the PJL lines that carry the job's settings to the printer.
#pragma once

#include "driver/device_instance.h"

namespace orvex {

// Writes the header's lines, and the waiting thumbnail, which is then freed. FALSE when a write that counts
// failed: any numeric line at once, and whatever was written last.
bool WriteJobHeader(const PDEV& pdev);

}  // namespace orvex
