#include "tools/orvexprofile/value_checks.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "tools/common/number_text.h"
#include "tools/common/printable_text.h"

namespace orvex::tools::profile {

namespace {

constexpr size_t kShownBytes = 60;

CLI::Validator Check(std::function<bool(const std::string&)> allows, const std::string& range) {
    const auto check = [allows = std::move(allows), range](std::string& text) -> std::string {
        if (allows(text)) return {};
        return "\"" + PrintableText(text, kShownBytes) + "\" is not allowed; it takes " + range;
    };
    return CLI::Validator(check, "");
}

// Parses the text of --resolution-codes: two numbers with a comma between them.
ResolutionCodes ParseResolutionCodes(const std::string& text) {
    const size_t comma = text.find(',');
    const std::optional<int> other = ParseWhole(text.substr(0, comma));
    const std::optional<int> at600 = comma < text.size() ? ParseWhole(text.substr(comma + 1)) : std::nullopt;
    const auto fits = [](std::optional<int> code) { return code && *code >= -128 && *code <= 127; };
    if (!fits(other) || !fits(at600)) {
        throw std::invalid_argument(
            "--resolution-codes: \"" + PrintableText(text) +
            "\" is not allowed; it takes two numbers from -128 to 127 with a comma between them");
    }
    return {static_cast<int8_t>(*other), static_cast<int8_t>(*at600)};
}

}  // namespace

CLI::Validator NumberFrom(double least, double most, const std::string& unit) {
    const auto allows = [least, most](const std::string& text) {
        const std::optional<double> number = ParseNumber(text);
        return number && *number >= least && *number <= most;
    };
    return Check(allows, DecimalText(least, 0) + " to " + DecimalText(most, 0) + " " + unit);
}

CLI::Validator WholeFrom(int least, int most) {
    const auto allows = [least, most](const std::string& text) {
        const std::optional<int> number = ParseWhole(text);
        return number && *number >= least && *number <= most;
    };
    return Check(allows, std::to_string(least) + " to " + std::to_string(most));
}

CLI::Validator OneOf(const std::vector<std::string>& words) {
    std::string range;
    for (size_t i = 0; i < words.size(); ++i) {
        range += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    }
    const auto allows = [words](const std::string& text) {
        return std::find(words.begin(), words.end(), text) != words.end();
    };
    return Check(allows, range);
}

void AddResolutionCodesOption(CLI::App& command, std::optional<ResolutionCodes>& codes) {
    command
        .add_option_function<std::string>(
            "--resolution-codes", [&codes](const std::string& text) { codes = ParseResolutionCodes(text); },
            "The engine's codes for other resolutions and for 600 dpi, each -128 to 127 (default: the "
            "driver's own)")
        ->type_name("OTHER,600");
}

void AddVariantOption(CLI::App& command, PrintVariant& variant) {
    const std::map<std::string, PrintVariant> variants = {{"600", PrintVariant::kAt600},
                                                          {"other", PrintVariant::kOther}};
    command
        .add_option_function<std::string>(
            "--variant", [&variant, variants](const std::string& name) { variant = variants.at(name); },
            "The variant of the profile: for 600 dpi, or for other resolutions (default)")
        ->type_name("600|other")
        ->check(OneOf({"600", "other"}));
}

}  // namespace orvex::tools::profile
