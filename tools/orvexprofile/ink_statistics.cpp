#include "tools/orvexprofile/ink_statistics.h"

#include <algorithm>

#include "driver/color/ink.h"

namespace orvex::tools::profile {

namespace {

// Returns the color under which the driver stores an entry of a variant.
uint32_t ColorOfEntry(int version, size_t entry) {
    const int steps = LayoutOf(version).steps;
    const size_t count = static_cast<size_t>(steps);
    const auto component = [steps](size_t step) { return StoredComponent(steps, static_cast<int>(step)); };
    return ColorIndex(component(entry / count / count), component(entry / count % count),
                      component(entry % count));
}

}  // namespace

InkStatistics MeasureInks(int version, const Variant& variant) {
    InkStatistics statistics;
    for (size_t entry = 0; entry < variant.size(); ++entry) {
        const uint32_t inks = variant[entry];
        for (int ink = 0; ink < kInks; ++ink) {
            const uint32_t amount = InkAmount(inks, ink);
            InkStatistics::Amounts& amounts = statistics.inks[static_cast<size_t>(ink)];
            amounts.least = std::min(amounts.least, amount);
            amounts.most = std::max(amounts.most, amount);
            amounts.mean += amount;
        }
        if (TotalInk(inks) > statistics.largestTotal) {
            statistics.largestTotal = TotalInk(inks);
            statistics.largestTotalColor = ColorOfEntry(version, entry);
        }
        if (inks == kNotComputed) ++statistics.marks;
    }
    for (InkStatistics::Amounts& amounts : statistics.inks)
        amounts.mean /= static_cast<double>(variant.size());
    statistics.white = variant.back();
    return statistics;
}

InkDifference CompareInks(std::span<const uint32_t> expected, std::span<const uint32_t> found) {
    InkDifference difference;
    difference.colors = expected.size();
    for (size_t i = 0; i < expected.size(); ++i) {
        if (expected[i] == found[i]) continue;
        ++difference.different;
        for (int ink = 0; ink < kInks; ++ink) {
            const uint32_t a = InkAmount(expected[i], ink), b = InkAmount(found[i], ink);
            const uint32_t distance = a > b ? a - b : b - a;
            InkDifference::Amounts& amounts = difference.inks[static_cast<size_t>(ink)];
            amounts.most = std::max(amounts.most, distance);
            amounts.mean += distance;
        }
    }
    if (difference.colors > 0) {
        for (InkDifference::Amounts& amounts : difference.inks)
            amounts.mean /= static_cast<double>(difference.colors);
    }
    return difference;
}

}  // namespace orvex::tools::profile
