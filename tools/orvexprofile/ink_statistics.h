// Figures of many ink values: what a profile uses, and how far two answers lie apart.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "tools/orvexprofile/ink.h"
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
    uint32_t largestTotalColor = 0;  // the first colour that has it
    uint32_t white = 0;              // the inks of white
    size_t marks = 0;                // entries that hold the driver's "not computed" mark
};

// Of the entries that a variant of this version stores. White is its last entry.
InkStatistics MeasureInks(int version, const Variant& variant);

struct InkDifference {
    struct Amounts {
        uint32_t most = 0;
        double mean = 0;
    };
    std::array<Amounts, kInks> inks;
    size_t colors = 0;     // compared
    size_t different = 0;  // of them in any ink
};

// Both have the same length.
InkDifference CompareInks(std::span<const uint32_t> expected, std::span<const uint32_t> found);

}  // namespace orvex::tools::profile
