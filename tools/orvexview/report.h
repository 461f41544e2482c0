// The contents of a print file as text for a person.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "driver/color/ink.h"
#include "tools/orvexview/page_placement.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// Returns the meaning of a job setting's name and value; empty if the name is unknown. States that a value is
// out of range.
std::string MeaningOf(std::string_view name, std::string_view value);

// Returns whether a job setting differs from the driver's default.
bool IsUnusual(std::string_view name, std::string_view value);

// Returns a table of the job header's variables with their values and meanings.
std::string DescribeHeader(const PrintFile& file);

// Returns a table of a page's geometry and its mean inks, of which 100 % is full ink everywhere.
std::string DescribePage(const PrintFile& file, const PrintedPage& page, const PagePlacement& placement,
                         const std::array<double, kInks>& meanInks);

}  // namespace orvex::tools::view
