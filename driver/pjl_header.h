// The job header: the PJL lines that carry the job's settings to the printer.
#pragma once

#include "driver/device_instance.h"

namespace orvex {

// Writes the header's lines and the waiting thumbnail, which is then freed. Returns false at once if a
// numeric line is lost, and otherwise whether the last write succeeded.
bool WriteJobHeader(const PDEV& pdev);

}  // namespace orvex
