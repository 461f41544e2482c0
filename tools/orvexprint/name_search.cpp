#include "tools/orvexprint/name_search.h"

#include <algorithm>
#include <numeric>

namespace orvex::tools::print {

namespace {

constexpr size_t kShownNames = 8;

// Returns how many letters have to be changed, added or removed to make one text the other.
size_t Distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string InSmallLetters(std::string_view text) {
    std::string small(text);
    for (char& letter : small) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return small;
}

std::string NearestNames(std::string_view name, std::vector<std::string> names, std::string_view kind) {
    const std::string wanted = InSmallLetters(name);
    const auto distance = [&](const std::string& each) { return Distance(wanted, InSmallLetters(each)); };
    std::stable_sort(names.begin(), names.end(),
                     [&](const std::string& a, const std::string& b) { return distance(a) < distance(b); });
    std::string text;
    for (size_t i = 0; i < std::min(names.size(), kShownNames); ++i)
        text += (i == 0 ? "\"" : ", \"") + names[i] + "\"";
    if (names.size() > kShownNames)
        text += " or another of " + std::to_string(names.size()) + " " + std::string(kind) +
                "; --list shows them";
    return text;
}

}  // namespace orvex::tools::print
