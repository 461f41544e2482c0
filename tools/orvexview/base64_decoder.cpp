#include "tools/orvexview/base64_decoder.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "tools/common/printable_text.h"

namespace orvex::tools::view {

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr uint8_t kNoDigit = 64;

// The value of each character as a digit.
constexpr std::array<uint8_t, 256> kDigits = [] {
    std::array<uint8_t, 256> digits{};
    digits.fill(kNoDigit);
    for (size_t i = 0; i < kAlphabet.size(); ++i) {
        digits[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
    }
    return digits;
}();

uint8_t DigitOf(char character) {
    return kDigits[static_cast<uint8_t>(character)];
}

}  // namespace

size_t CountBase64Digits(std::string_view text) {
    const auto isNone = [](char character) { return DigitOf(character) == kNoDigit; };
    return static_cast<size_t>(std::find_if(text.begin(), text.end(), isNone) - text.begin());
}

std::vector<uint8_t> DecodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) {
        throw std::runtime_error("base64 text of " + std::to_string(text.size()) +
                                 " characters; expected a multiple of 4");
    }
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    const std::string_view digits = text.substr(0, text.size() - padding);
    std::vector<uint8_t> bytes;
    bytes.reserve(digits.size() * 3 / 4);
    uint32_t bits = 0;
    int bitCount = 0;
    for (size_t at = 0; at < digits.size(); ++at) {
        const uint32_t digit = DigitOf(digits[at]);
        if (digit == kNoDigit) {
            throw std::runtime_error("\"" + PrintableText(digits.substr(at, 1)) + "\" at character " +
                                     std::to_string(at) + " of base64 text; expected a base64 digit");
        }
        bits = bits << 6 | digit;
        bitCount += 6;
        if (bitCount < 8) continue;
        bitCount -= 8;
        bytes.push_back(static_cast<uint8_t>(bits >> bitCount));
    }
    return bytes;
}

}  // namespace orvex::tools::view
