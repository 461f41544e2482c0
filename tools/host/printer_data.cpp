#include "tools/host/printer_data.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tools/common/whole_file.h"
#include "tools/common/wide_text.h"

namespace orvex::tools {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

// Returns the part of `path` after `key` and its backslash; empty if `path` is not below `key`.
std::string_view Below(std::string_view path, const std::string& key) {
    if (key.empty()) return path;
    if (path.size() <= key.size() || path[key.size()] != '\\' ||
        strncasecmp(path.data(), key.c_str(), key.size()) != 0) {
        return {};
    }
    return path.substr(key.size() + 1);
}

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::string Hex(std::string_view bytes) {
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += kHexDigits[byte >> 4];
        hex += kHexDigits[byte & 15];
    }
    return hex;
}

std::string BytesFromHex(std::string_view hex) {
    if (hex.size() % 2 != 0) throw std::runtime_error("\"hex\" has an odd number of digits");
    std::string bytes;
    for (size_t i = 0; i < hex.size(); i += 2) {
        const size_t high = kHexDigits.find(hex[i]);
        const size_t low = kHexDigits.find(hex[i + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos) {
            throw std::runtime_error("\"hex\" holds something other than the digits 0 to F");
        }
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

std::string DwordBytes(uint32_t number) {
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

uint32_t DwordOf(std::string_view bytes) {
    uint32_t number = 0;
    memcpy(&number, bytes.data(), sizeof number);
    return number;
}

// Returns whether the value is a text whose terminator is its only zero byte, and that survives the
// conversion to UTF-8 and back.
bool IsPlainText(const PrinterValue& value) {
    if (value.type != REG_SZ || value.bytes.empty() || value.bytes.find('\0') != value.bytes.size() - 1)
        return false;
    const std::string text = value.bytes.substr(0, value.bytes.size() - 1);
    return NarrowFromUtf8(Utf8FromNarrow(text)) == text;
}

json ValueToJson(const PrinterValue& value) {
    if (value.type == REG_DWORD && value.bytes.size() == 4) return DwordOf(value.bytes);
    if (IsPlainText(value)) return Utf8FromNarrow(value.bytes.substr(0, value.bytes.size() - 1));
    return {{"type", value.type}, {"hex", Hex(value.bytes)}};
}

uint32_t NumberFromJson(const json& number) {
    if (!number.is_number_unsigned() || number.get<uint64_t>() > UINT32_MAX) {
        throw std::runtime_error("a number is not one of 0 to 4294967295");
    }
    return number.get<uint32_t>();
}

PrinterValue ValueFromJson(const json& value) {
    if (value.is_string()) return {REG_SZ, NarrowFromUtf8(value.get<std::string>()) + '\0'};
    if (value.is_number()) return {REG_DWORD, DwordBytes(NumberFromJson(value))};
    return {NumberFromJson(value.at("type")), BytesFromHex(value.at("hex").get<std::string>())};
}

}  // namespace

bool PrinterData::NameOrder::operator()(const std::string& a, const std::string& b) const {
    return strcasecmp(a.c_str(), b.c_str()) < 0;
}

void PrinterData::Set(const std::string& key, const std::string& value, PrinterValue content) {
    keys_[key][value] = std::move(content);
}

void PrinterData::SetNumber(const std::string& key, const std::string& value, uint32_t number) {
    Set(key, value, {REG_DWORD, DwordBytes(number)});
}

void PrinterData::SetText(const std::string& key, const std::string& value, std::string_view text) {
    Set(key, value, {REG_SZ, std::string(text) + '\0'});
}

bool PrinterData::HasKey(const std::string& key) const {
    return keys_.contains(key) || !SubKeys(key).empty();
}

const PrinterValue* PrinterData::Find(const std::string& key, const std::string& value) const {
    const auto values = keys_.find(key);
    if (values == keys_.end()) return nullptr;
    const auto found = values->second.find(value);
    return found == values->second.end() ? nullptr : &found->second;
}

std::vector<std::string> PrinterData::SubKeys(const std::string& key) const {
    std::vector<std::string> names;
    for (const auto& each : keys_) {
        const std::string_view below = Below(each.first, key);
        const std::string_view name = below.substr(0, below.find('\\'));
        if (!name.empty()) names.emplace_back(name);
    }
    std::sort(names.begin(), names.end(), NameOrder());
    const auto same = [](const std::string& a, const std::string& b) {
        return strcasecmp(a.c_str(), b.c_str()) == 0;
    };
    names.erase(std::unique(names.begin(), names.end(), same), names.end());
    return names;
}

std::string PrinterData::ToJson() const {
    json keys = json::object();
    for (const auto& [key, values] : keys_) {
        json& object = keys[Utf8FromNarrow(key)] = json::object();
        for (const auto& [name, value] : values) object[Utf8FromNarrow(name)] = ValueToJson(value);
    }
    return keys.dump(4, ' ', false, json::error_handler_t::replace) + "\n";
}

PrinterData PrinterData::FromJson(std::string_view text) {
    PrinterData data;
    try {
        const json keys = json::parse(text);
        if (!keys.is_object()) throw std::runtime_error("the whole is not an object of keys");
        for (const auto& [key, values] : keys.items()) {
            if (!values.is_object())
                throw std::runtime_error("key \"" + key + "\" is not an object of values");
            data.AddKey(NarrowFromUtf8(key));
            for (const auto& [name, value] : values.items()) {
                data.Set(NarrowFromUtf8(key), NarrowFromUtf8(name), ValueFromJson(value));
            }
        }
    } catch (const json::exception& error) {
        throw std::runtime_error(error.what());
    }
    return data;
}

void PrinterData::Save(const fs::path& path) const {
    WriteWholeFile(path, ToJson());
}

PrinterData PrinterData::Load(const fs::path& path) {
    const std::string text = ReadWholeText(path);
    try {
        return FromJson(text);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("there is no printer data in " + Utf8FromPath(path) + ": " + error.what());
    }
}

}  // namespace orvex::tools
