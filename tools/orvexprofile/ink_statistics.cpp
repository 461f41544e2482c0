#include "tools/orvexprofile/ink_statistics.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "driver/color/ink.h"
#include "tools/common/number_text.h"
#include "tools/orvexprofile/ink_treatment.h"

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

constexpr int kNumberWidth = 9;

std::string ShownInks(uint32_t inks) {
    std::string text;
    for (int ink = 0; ink < kInks; ++ink) {
        text += (ink ? " " : "") + std::string(1, kInkLetters[static_cast<size_t>(ink)]) + " " +
                std::to_string(InkAmount(inks, ink));
    }
    return text;
}

// Writes a row of figures after an ink's letter, or a row of heads after a blank.
template <typename... Figures>
void Row(std::ostream& out, char letter, const Figures&... figures) {
    out << "    " << letter;
    ((out << std::setw(kNumberWidth) << figures), ...);
    out << '\n';
}

}  // namespace

std::string HexColor(uint32_t color) {
    std::ostringstream text;
    text << '#' << std::hex << std::setw(6) << std::setfill('0') << color;
    return text.str();
}

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

void ReportStatistics(std::ostream& out, std::string_view title, const InkStatistics& statistics) {
    out << "  " << title << '\n';
    Row(out, ' ', "least", "most", "mean");
    for (size_t ink = 0; ink < kInks; ++ink) {
        const InkStatistics::Amounts& amounts = statistics.inks[ink];
        Row(out, kInkLetters[ink], amounts.least, amounts.most, DecimalText(amounts.mean, 1));
    }
    out << "    largest total " << statistics.largestTotal << " ("
        << DecimalText(statistics.largestTotal * 100 / kFullAmount, 1) << " %) at "
        << HexColor(statistics.largestTotalColor) << '\n';
    if (statistics.white != 0) out << "    white gets ink: " << ShownInks(statistics.white) << '\n';
    if (statistics.marks != 0) {
        out << "    taken by the driver as not computed (all four inks full): "
            << GroupedNumber(statistics.marks) << '\n';
    }
}

void ReportDifference(std::ostream& out, std::string_view title, const InkDifference& difference) {
    out << "  " << title << ": " << GroupedNumber(difference.different) << " of "
        << GroupedNumber(difference.colors) << " colours differ\n";
    if (difference.different == 0) return;
    Row(out, ' ', "largest", "mean");
    for (size_t ink = 0; ink < kInks; ++ink) {
        Row(out, kInkLetters[ink], difference.inks[ink].most, DecimalText(difference.inks[ink].mean, 3));
    }
}

}  // namespace orvex::tools::profile
