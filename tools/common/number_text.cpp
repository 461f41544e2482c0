#include "tools/common/number_text.h"

#include <charconv>

namespace orvex::tools {

namespace {

constexpr size_t kMaxNumberLength = 32;

// Drops a plus sign, which std::from_chars does not take.
std::string_view WithoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

}  // namespace

std::string DecimalText(double value, int digits) {
    char text[400];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr;
    return std::string(text, end);
}

std::string GroupedNumber(uint64_t number) {
    std::string text = std::to_string(number);
    for (size_t place = text.size(); place > 3; place -= 3) text.insert(place - 3, ",");
    return text;
}

std::string MmText(double length, double lengthPerInch) {
    return DecimalText(length * kMmPerInch / lengthPerInch, 1);
}

std::string SizeText(uint64_t width, uint64_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::optional<double> ParseNumber(std::string_view text) {
    text = WithoutPlus(text);
    if (text.empty() || text.size() > kMaxNumberLength) return std::nullopt;
    double value = 0;
    const auto [end, failure] =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    // std::from_chars also takes "inf" and "nan".
    const char last = text.back();
    if (!(last >= '0' && last <= '9') && last != '.') return std::nullopt;
    return value;
}

std::optional<int> ParseWhole(std::string_view text) {
    text = WithoutPlus(text);
    int value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace orvex::tools
