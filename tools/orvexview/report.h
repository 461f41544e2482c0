// The contents of a print file as text for a person.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/orvexview/page_placement.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// Returns the meaning of a job setting's name and value; empty if the name is unknown. States that a value is
// out of range.
std::string MeaningOf(std::string_view name, std::string_view value);

// Returns a table of the job header's variables with their values and meanings.
std::string DescribeHeader(const PrintFile& file);

// Returns a table of the geometry of every page; `placements` are those of the pages. Reads all rows for the
// mean amount of each ink over the image, of which 100 % is full ink everywhere.
std::string DescribePages(const PrintFile& file, const std::vector<PagePlacement>& placements);

}  // namespace orvex::tools::view
