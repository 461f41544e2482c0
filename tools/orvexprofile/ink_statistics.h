// Figures of many ink values, measured and shown: the inks that a profile uses, and the difference between
// two answers.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include "tools/orvexprofile/ink_treatment.h"
#include "tools/orvexprofile/profile.h"

namespace orvex::tools::profile {

struct InkStatistics {
    struct Amounts {
        uint32_t least = 255;
        uint32_t most = 0;
        double mean = 0;
    };
    std::array<Amounts, kInks> inks;
    uint32_t largestTotal = 0;       // of the four amounts, 0 to 1020
    uint32_t largestTotalColor = 0;  // the first color with that total
    uint32_t white = 0;              // the inks of white
    size_t marks = 0;                // entries with the driver's "not computed" mark
};

// Measures the entries of a variant of this version. Its last entry is white.
InkStatistics MeasureInks(int version, const Variant& variant);

struct InkDifference {
    struct Amounts {
        uint32_t most = 0;
        double mean = 0;
    };
    std::array<Amounts, kInks> inks;
    size_t colors = 0;     // all that were compared
    size_t different = 0;  // those that differ in any ink
};

// Compares two lists of ink values of the same length.
InkDifference CompareInks(std::span<const uint32_t> expected, std::span<const uint32_t> found);

// Returns a color as "#rrggbb".
std::string HexColor(uint32_t color);

// Writes a line for each ink with its least, most and mean amount, one for the largest total, and one for
// each thing that is wrong.
void ReportStatistics(std::ostream& out, std::string_view title, const InkStatistics& statistics);

// Writes a line for each ink with the largest and the mean difference.
void ReportDifference(std::ostream& out, std::string_view title, const InkDifference& difference);

}  // namespace orvex::tools::profile
