// One run of orvexview: everything that its options ask for.
#pragma once

#include <iosfwd>

#include "tools/orvexview/options.h"

namespace orvex::tools::view {

// Reads the print file, writes the tables to `out` and the pictures to files, and names every file. Throws
// std::exception in words when the file is not sound or anything can't be done; what was done until then
// stays.
void ShowPrintFile(const Options& options, std::ostream& out);

}  // namespace orvex::tools::view
