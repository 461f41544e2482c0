#include "tools/orvexprofile/report.h"

#include <iomanip>
#include <sstream>

namespace orvex::tools::profile {

namespace {

constexpr int kNumberWidth = 9;

std::string HexColor(uint32_t color) {
    std::ostringstream text;
    text << '#' << std::hex << std::setw(6) << std::setfill('0') << color;
    return text.str();
}

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

std::string GroupedNumber(uint64_t number) {
    std::string text = std::to_string(number);
    for (size_t place = text.size(); place > 3; place -= 3) text.insert(place - 3, ",");
    return text;
}

std::string FixedNumber(double number, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << number;
    return text.str();
}

void ReportStatistics(std::ostream& out, std::string_view title, const InkStatistics& statistics) {
    out << "  " << title << '\n';
    Row(out, ' ', "least", "most", "mean");
    for (size_t ink = 0; ink < kInks; ++ink) {
        const InkStatistics::Amounts& amounts = statistics.inks[ink];
        Row(out, kInkLetters[ink], amounts.least, amounts.most, FixedNumber(amounts.mean, 1));
    }
    out << "    largest total " << statistics.largestTotal << " ("
        << FixedNumber(Percent(statistics.largestTotal), 1) << " %) at "
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
        Row(out, kInkLetters[ink], difference.inks[ink].most, FixedNumber(difference.inks[ink].mean, 3));
    }
}

}  // namespace orvex::tools::profile
