// The arguments of a program as UTF-8.
#pragma once

#include <string>
#include <vector>

namespace orvex::tools {

// Returns the arguments without the program's name. On Windows those of main() lack the characters that the
// code page lacks, so they are taken from the command line; the console is also told that output is UTF-8.
std::vector<std::string> Utf8Arguments(int count, char** arguments);

}  // namespace orvex::tools
