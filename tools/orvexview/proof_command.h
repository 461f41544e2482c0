// orvexview FILE --html PROOF: a print file as one page for a browser.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace orvex::tools::view {

// Returns whether the arguments ask for a proof.
bool IsProofCommand(const std::vector<std::string>& arguments);

// Writes a proof as the arguments say, and names it on `out`. Returns the exit status. Throws OptionError and
// std::runtime_error; of a file that can be read in part, after the proof of that part was written.
int RunProofCommand(const std::vector<std::string>& arguments, std::ostream& out);

}  // namespace orvex::tools::view
