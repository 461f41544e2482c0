// The files of a job, checked before any of them is opened.
#pragma once

#include "tools/orvexprint/job_options.h"

namespace orvex::tools::print {

// Makes every path independent of the current folder, which the driver changes while a job runs.
void MakeAbsolute(JobOptions& options);

// Checks that no output is also an input or another output, and that an existing output is a file of its
// kind, an empty one, or not to be spared (--force). Throws FileClash or OptionError.
void CheckOutputs(const JobOptions& options);

}  // namespace orvex::tools::print
