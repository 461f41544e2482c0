// The list of the measurement target's patches, which programs that measure read: a CGATS text with the
// amounts of the inks and an estimate of the color.
#pragma once

#include <span>
#include <string>

#include "tools/orvexprofile/target_pages.h"

namespace orvex::tools::profile {

// Returns the text. Its inks are percents of full ink; its colors are those of the page, as D50 XYZ from 0 to
// 100.
std::string MeasurementList(std::span<const TargetPatch> patches, const TargetLayout& layout,
                            double limitPercent);

}  // namespace orvex::tools::profile
