#include "tools/orvexprint/registry_export.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "tools/orvexprint/name_search.h"

namespace orvex::tools::print {

namespace {

constexpr std::string_view kFirstLines[] = {"Windows Registry Editor Version 5.00", "REGEDIT4"};
constexpr std::string_view kBinaryTypes[] = {"hex:", "hex(3):"};
constexpr size_t kStartBytes = 128;  // enough for a first line

// Returns the file as UTF-8.
std::string TextOf(ByteSpan bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (text.starts_with("\xEF\xBB\xBF")) return std::string(text.substr(3));
    if (!text.starts_with("\xFF\xFE")) return Utf8FromNarrow(text);
    std::u16string wide;
    wide.reserve(bytes.size() / 2);
    for (size_t at = 2; at + 2 <= bytes.size(); at += 2) wide += static_cast<char16_t>(Number16(bytes, at));
    return Utf8(wide);
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool NamesDeviceModes(std::string_view name) {
    return InSmallLetters(name).find("devmode") != std::string::npos;
}

// One reading of an export, line by line.
class Reading {
  public:
    explicit Reading(std::string text) : text_(std::move(text)) {}

    std::vector<RegistryValue> Run() {
        while (NextLine()) {
            if (line_.starts_with('[')) {
                const size_t end = line_.rfind(']');
                key_ = line_.substr(1, end == std::string_view::npos ? end : end - 1);
            } else if (line_.starts_with('"') || line_.starts_with('@')) {
                TakeValue();
            }
        }
        return std::move(values_);
    }

  private:
    bool NextLine() {
        if (at_ >= text_.size()) return false;
        const size_t end = std::min(text_.find('\n', at_), text_.size());
        line_ = Trimmed(std::string_view(text_).substr(at_, end - at_));
        at_ = end + 1;
        ++number_;
        return true;
    }

    // Takes the name off the line, and returns it without quotes and escapes.
    std::string TakeName() {
        std::string name;
        const bool named = line_.front() == '"';
        line_.remove_prefix(1);
        if (!named) return name;
        while (!line_.empty() && line_.front() != '"') {
            if (line_.front() == '\\' && line_.size() > 1) line_.remove_prefix(1);
            name += line_.front();
            line_.remove_prefix(1);
        }
        if (!line_.empty()) line_.remove_prefix(1);
        return name;
    }

    void TakeValue() {
        RegistryValue value = {std::string(key_), TakeName(), number_, {}};
        if (!NamesDeviceModes(value.name) && !NamesDeviceModes(value.key)) return;
        line_ = Trimmed(line_);
        if (!line_.starts_with('=')) return;
        line_ = Trimmed(line_.substr(1));
        for (const std::string_view type : kBinaryTypes) {
            if (!line_.starts_with(type)) continue;
            line_.remove_prefix(type.size());
            TakeBytes(value);
            if (!value.bytes.empty()) values_.push_back(std::move(value));
            return;
        }
    }

    // Takes bytes up to the first line that does not end in a backslash.
    void TakeBytes(RegistryValue& value) {
        bool more = true;
        while (more) {
            more = line_.ends_with('\\');
            if (more) line_.remove_suffix(1);
            TakeList(value);
            if (more && !NextLine()) Fail(value, "the file ends in the middle of its bytes");
        }
    }

    void TakeList(RegistryValue& value) {
        std::string_view rest = line_;
        while (!rest.empty()) {
            const size_t comma = std::min(rest.find(','), rest.size());
            const std::string_view item = Trimmed(rest.substr(0, comma));
            rest.remove_prefix(std::min(comma + 1, rest.size()));
            if (item.empty() && rest.empty()) return;  // the list goes on in the next line
            uint8_t byte = 0;
            const auto [end, error] = std::from_chars(item.data(), item.data() + item.size(), byte, 16);
            if (item.empty() || item.size() > 2 || error != std::errc() || end != item.data() + item.size())
                Fail(value, "a byte is no hexadecimal number");
            value.bytes.push_back(byte);
        }
    }

    [[noreturn]] void Fail(const RegistryValue& value, const char* what) const {
        throw RegistryError("is damaged: line " + std::to_string(number_) + ", in the value \"" + value.name +
                            "\": " + what);
    }

    std::string text_;
    size_t at_ = 0;  // of the next line
    size_t number_ = 0;
    std::string_view line_;
    std::string_view key_;
    std::vector<RegistryValue> values_;
};

}  // namespace

bool IsRegistryExport(ByteSpan bytes) {
    const std::string start = TextOf(bytes.first(std::min(bytes.size(), kStartBytes)));
    return std::any_of(std::begin(kFirstLines), std::end(kFirstLines),
                       [&](std::string_view line) { return start.starts_with(line); });
}

std::vector<RegistryValue> ReadDeviceModeValues(ByteSpan bytes) {
    return Reading(TextOf(bytes)).Run();
}

}  // namespace orvex::tools::print
