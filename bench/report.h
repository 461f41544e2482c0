// The report of what was measured, as tables in Markdown.
#pragma once

#include <ostream>

#include "bench/bench.h"

namespace orvex::bench {

// Writes the machine, the rows, the memory and the notes.
void PrintReport(const Bench& bench, std::ostream& out);

}  // namespace orvex::bench
