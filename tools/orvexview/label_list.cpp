#include "tools/orvexview/label_list.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "driver/config/media_import.h"
#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools::view {

namespace {

constexpr double kTenthsPerMm = 10;
constexpr double kSameTenths = 2;

// Takes a line off the front of the text.
std::string_view TakeLine(std::string_view& text) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

// Returns a length in tenths of a millimeter.
template <size_t N>
int16_t LengthOf(const char (&text)[N], uint32_t units) {
    return LabelLengthTenthsMm(std::string_view(text, std::find(text, text + N, '\0') - text), units);
}

}  // namespace

ListedLabels::ListedLabels(const std::filesystem::path& path) {
    const std::string file = ReadWholeText(path).substr(0, kMaxMediaBytes);
    std::string_view rest = file;
    rest.remove_prefix(std::min(rest.find(kMediaSection), rest.size()));
    TakeLine(rest);
    LabelSize label = {};
    while (!rest.empty() && ParseMediaLabel(TakeLine(rest), &label)) {
        sizes_.push_back({LengthOf(label.width, label.units), LengthOf(label.length, label.units)});
    }
    if (sizes_.empty()) {
        throw std::runtime_error(Utf8FromPath(path) + " lists no labels; expected a media.inf with " +
                                 std::string(kMediaSection));
    }
}

bool ListedLabels::Has(double width, double length) const {
    const auto same = [](int16_t tenths, double mm) {
        return std::abs(tenths - mm * kTenthsPerMm) <= kSameTenths;
    };
    return std::any_of(sizes_.begin(), sizes_.end(), [&](const Size& size) {
        return same(size.width, width) && same(size.length, length);
    });
}

}  // namespace orvex::tools::view
