// What a print file says, as text for a person.
#pragma once

#include <string>
#include <vector>

#include "tools/orvexview/page_placement.h"
#include "tools/orvexview/print_file.h"

namespace orvex::tools::view {

// Every variable of the job header with its value and what it means.
std::string DescribeHeader(const PrintFile& file);

// The geometry of every page; `placements` goes with the pages. Reads all rows for the share of each
// ink: the mean of its amounts over the image, 100 % = full ink everywhere.
std::string DescribePages(const PrintFile& file, const std::vector<PagePlacement>& placements);

}  // namespace orvex::tools::view
