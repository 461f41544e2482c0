// One run of orvexview.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/orvexview/options.h"

namespace orvex::tools::view {

// Reads the print file, writes the tables to `out` and the pictures to files, and names every file on `out`.
// Throws an exception with an explanation if the file is not sound, or something can't be done; files that
// were written before stay. Returns the exit status: 1 if the inks are not those of the art to verify.
int ShowPrintFile(const Options& options, std::ostream& out);

// Does all that the arguments after the program's name ask for. Returns the exit status: 0 on success, 1
// after an error, 2 for a wrong command line; errors are one line on `error`.
int RunOrvexView(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& error);

}  // namespace orvex::tools::view
