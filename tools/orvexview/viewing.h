// One run of orvexview.
#pragma once

#include <iosfwd>

#include "tools/orvexview/options.h"

namespace orvex::tools::view {

// Reads the print file, writes the tables to `out` and the pictures to files, and names every file on `out`.
// Throws an exception with an explanation if the file is not sound, or something can't be done; files that
// were written before stay.
void ShowPrintFile(const Options& options, std::ostream& out);

}  // namespace orvex::tools::view
