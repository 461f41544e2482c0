#include "tests/plain/driver/label_list.h"

#include <algorithm>
#include <cstdlib>

namespace orvex::plain {

namespace {

constexpr uint32_t kText = 1, kNumber = 4;  // types of values
constexpr uint32_t kNotFound = 2, kMoreData = 234, kWrongType = 0x20000004;
constexpr uint32_t kNameSize = 64, kLengthSize = 8, kNumberSize = 4;

bool IsNumber(const std::string& name) {
    return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}
int NumberOf(const std::string& key) {
    return IsNumber(key) ? atoi(key.c_str()) : 0;
}

std::string NumberBytes(uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}
uint32_t NumberIn(const std::string& bytes) {
    uint32_t number = 0;
    for (size_t i = 4; i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[i]);
    return number;
}

// Returns 0 and the bytes of a value of at most `size` bytes, or an error code, which is logged.
uint32_t Read(const LabelData& data, int label, const std::string& name, uint32_t type, uint32_t size,
              std::string& bytes, Log& log) {
    uint32_t code = kNotFound;
    const auto values = data.labels.find(std::to_string(label));
    if (values != data.labels.end() && values->second.contains(name)) {
        const LabelValue& value = values->second.at(name);
        code = value.bytes.size() > size ? kMoreData : value.type != type ? kWrongType : 0;
        bytes = value.bytes;
    }
    if (code != 0) log.Error("Could not read label %s: 0x%x", name.c_str(), code);
    return code;
}

// Reads a text into a field of `size` bytes, which always ends with a terminator.
bool ReadText(const LabelData& data, int label, const std::string& name, uint32_t size, std::string& text,
              Log& log) {
    if (Read(data, label, name, kText, size, text, log) != 0) return false;
    text = text.substr(0, std::min<size_t>(text.find('\0'), size - 1));
    return true;
}

bool ReadLabel(const LabelData& data, int number, Label& label, Log& log) {
    std::string bytes;
    label.number = number;
    if (Read(data, number, "version", kNumber, kNumberSize, bytes, log) != 0) return false;
    if (NumberIn(bytes) != 1) {
        log.Error("Unknown label version: %d", static_cast<int>(NumberIn(bytes)));
        return false;
    }
    if (!ReadText(data, number, "name", kNameSize, label.name, log)) return false;
    if (!ReadText(data, number, "width", kLengthSize, label.width, log)) return false;
    if (!ReadText(data, number, "length", kLengthSize, label.length, log)) return false;
    if (Read(data, number, "units", kNumber, kNumberSize, bytes, log) != 0) return false;
    label.units = NumberIn(bytes);
    return true;
}

// Reads a quoted text of at most `most` characters after separators. Returns false if there is none.
bool TakeQuoted(const std::string& line, size_t& at, size_t most, std::string& text) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == ',')) ++at;
    if (at == line.size() || line[at] != '"') return false;
    const size_t end = line.find('"', at + 1);
    if (end == std::string::npos || end - at - 1 > most) return false;
    text = line.substr(at + 1, end - at - 1);
    at = end + 1;
    return true;
}

bool ParseLine(const std::string& line, Label& label) {
    size_t at = 0;
    if (!TakeQuoted(line, at, 63, label.name) || !TakeQuoted(line, at, 7, label.width) ||
        !TakeQuoted(line, at, 7, label.length))
        return false;
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == ',')) ++at;
    label.units = static_cast<uint32_t>(atoi(line.c_str() + at));
    return true;
}

void Store(const Label& label, LabelData& data) {
    LabelValues& values = data.labels[std::to_string(label.number)];
    values["version"] = {kNumber, NumberBytes(1)};
    values["name"] = {kText, label.name + '\0'};
    values["width"] = {kText, label.width + '\0'};
    values["length"] = {kText, label.length + '\0'};
    values["units"] = {kNumber, NumberBytes(label.units)};
    data.hasKey = true;
}

}  // namespace

std::vector<Label> ReadLabels(const LabelData& data, Log& log) {
    if (!data.hasKey) {
        log.Error("Could not find label list in registry: 0x%x", kNotFound);
        return {};
    }
    std::vector<Label> labels;
    for (const auto& [key, values] : data.labels) {
        Label label;
        if (ReadLabel(data, NumberOf(key), label, log)) labels.push_back(label);
    }
    return labels;
}

int16_t LabelLength(const std::string& text, uint32_t units) {
    std::string digits = text;
    if (digits.starts_with("+") || digits.starts_with("-")) digits.erase(0, 1);
    const bool decimal = digits.find_first_not_of("0123456789.") == std::string::npos &&
                         std::count(digits.begin(), digits.end(), '.') <= 1;
    const double length = decimal ? atof(text.c_str()) : 0;
    const double tenthsMm = units == 0 ? length * 10.0 : units == 1 ? length * 254.0 : length;
    return static_cast<int16_t>(static_cast<int64_t>(tenthsMm + 0.5));
}

void ImportMedia(const Installation& installation, LabelData& data, Log& log) {
    if (data.hasKey) return;
    if (!installation.media) return log.Error("failed to open media.inf");
    std::string text = installation.media->substr(0, 4095);
    if (text.empty()) return log.Error("media.inf empty");
    text.resize(std::min(text.find('\0'), text.size()));
    size_t at = text.find("[Media]");
    while (at != std::string::npos && (at = text.find('\n', at)) != std::string::npos) {
        ++at;
        Label label;
        if (at == text.size() || !ParseLine(text.substr(at, text.find('\n', at) - at), label)) return;
        log.Error("Add %s %s %s %d", label.name.c_str(), label.width.c_str(), label.length.c_str(),
                  static_cast<int>(label.units));
        if (!data.hasKey) log.Error("Could not find label list in registry: 0x%x", kNotFound);
        label.number = 257;
        for (const auto& [key, values] : data.labels) label.number = std::max(label.number, NumberOf(key));
        ++label.number;
        Store(label, data);
    }
}

}  // namespace orvex::plain
