#include "tools/orvexview/ink_use.h"

#include <algorithm>

#include "driver/color/row_conversion.h"

namespace orvex::tools::view {

namespace {

constexpr size_t kPatternValues = 4;  // of each pattern

// Returns the ink values of both patterns, the light and the heavy one.
std::array<uint32_t, 2 * kPatternValues> PatternValues() {
    std::array<uint32_t, 2 * kPatternValues> values = {};
    FillBlankPattern(values.data(), kPatternValues, 1);
    FillBlankPattern(values.data() + kPatternValues, kPatternValues, 0);
    return values;
}

bool IsPattern(uint32_t inkValue) {
    static const std::array<uint32_t, 2 * kPatternValues> values = PatternValues();
    return std::find(values.begin(), values.end(), inkValue) != values.end();
}

void AddInks(std::array<uint64_t, kInks>& sums, const std::array<uint64_t, kInks>& added) {
    for (int ink = 0; ink < kInks; ++ink) sums[ink] += added[ink];
}

}  // namespace

void InkUse::Add(const InkUse& other) {
    AddInks(label, other.label);
    AddInks(purgeBar, other.purgeBar);
    AddInks(pattern, other.pattern);
}

InkCounter::InkCounter(const PagePlacement& placement, bool withPattern)
    : image_(ImageArea(placement)), withPattern_(withPattern) {}

void InkCounter::TakeRow(uint32_t row, std::span<const uint32_t> inkValues, bool repeats) {
    const bool imageRow = row >= image_.top && row < image_.top + image_.rows;
    if (!repeats || row == 0 || imageRow != lastIsImage_) last_ = Count(imageRow, inkValues);
    lastIsImage_ = imageRow;
    use_.Add(last_);
}

InkUse InkCounter::Count(bool imageRow, std::span<const uint32_t> inkValues) const {
    InkUse use;
    for (uint32_t x = 0; x < inkValues.size(); ++x) {
        const uint32_t inks = inkValues[x];
        if (inks == 0) continue;
        const bool inImage = imageRow && x >= image_.left && x < image_.left + image_.width;
        auto& sums = withPattern_ && IsPattern(inks) ? use.pattern : inImage ? use.label : use.purgeBar;
        for (int ink = 0; ink < kInks; ++ink) sums[ink] += InkAmount(inks, ink);
    }
    return use;
}

bool HasPattern(const PjlHeader& header) {
    return header.FindNumber("KWS").value_or(0) != 0;
}

}  // namespace orvex::tools::view
