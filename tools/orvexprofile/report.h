// Figures as the profile tool shows them.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "tools/orvexprofile/ink_statistics.h"

namespace orvex::tools::profile {

// Returns 39329 as "39,329".
std::string GroupedNumber(uint64_t number);

// Returns a number with that many decimals.
std::string FixedNumber(double number, int decimals);

// Writes a line for each ink with its least, most and mean amount, one for the largest total, and one for
// each thing that is wrong.
void ReportStatistics(std::ostream& out, std::string_view title, const InkStatistics& statistics);

// Writes a line for each ink with the largest and the mean difference.
void ReportDifference(std::ostream& out, std::string_view title, const InkDifference& difference);

}  // namespace orvex::tools::profile
