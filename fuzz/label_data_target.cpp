// Labels in the printer's data: whatever the data contains, the driver reads the list that the plain
// definition finds. Whatever keys the spooler returns, every label is well-formed, the next number is larger
// than all others, and a device mode is validated against the list.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "driver/config/device_mode_merge.h"
#include "driver/config/label_sizes.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/device_mode_rules.h"
#include "tools/host/import_patch.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr const char* kValues[] = {"version", "name", "width", "length", "units"};

// The keys that the spooler returns when the input invents them.
std::string madeUpKeys;
uint32_t madeUpSize = 0;

DWORD WINAPI AnswerKeys(HANDLE, LPCWSTR, LPWSTR keys, DWORD size, LPDWORD needed) {
    *needed = madeUpSize;
    if (keys == nullptr) return ERROR_MORE_DATA;
    std::copy_n(madeUpKeys.data(), std::min<size_t>(size, madeUpKeys.size()), reinterpret_cast<char*>(keys));
    return ERROR_SUCCESS;
}

// Returns the name of a key of the label list, most often a number.
std::string KeyName(FuzzInput& choices) {
    if (choices.Flag()) return std::to_string(choices.Number<uint16_t>());
    std::string name(choices.TakeText(choices.Byte() % 12));
    for (char& c : name) {
        if (c == '\\' || c == '\0') c = '7';
    }
    return name.empty() ? "258" : name;
}

void AddFuzzedLabel(FuzzInput& choices, PrinterData& data) {
    const std::string key = "Label Sizes\\" + KeyName(choices);
    data.AddKey(key);
    const uint8_t present = choices.Byte();
    for (size_t i = 0; i < std::size(kValues); ++i) {
        if (present >> i & 1) continue;
        const bool text = i >= 1 && i <= 3;
        const uint8_t how = choices.Byte();
        if (how < 0xC0 && !text) {
            data.SetNumber(key, kValues[i], i == 0 && how < 0x80 ? 1 : choices.Number<uint32_t>());
        } else if (how < 0xC0) {
            data.SetText(key, kValues[i], choices.TakeText(how % 70));
        } else {
            // A value of any type and length, with or without a terminator.
            data.Set(key, kValues[i], {choices.Byte() % 12u, std::string(choices.TakeText(how % 64))});
        }
    }
}

// A label that the plain definition finds in the printer's data.
struct ExpectedLabel {
    uint16_t number;
    std::string name, width, length;
    uint32_t units;
};

uint16_t NumberOfKey(const std::string& name) {
    const bool digits = name.find_first_not_of("0123456789") == std::string::npos;
    const unsigned long long number = digits ? strtoull(name.c_str(), nullptr, 10) : 0;
    return number > UINT16_MAX ? uint16_t{0} : static_cast<uint16_t>(number);
}

// Returns the bytes of a value if it has that type and at most `most` bytes.
std::optional<std::string> Value(const PrinterData& data, const std::string& key, const char* name,
                                 DWORD type, size_t most) {
    const PrinterValue* value = data.Find(key, name);
    if (value == nullptr || value->type != type || value->bytes.size() > most) return std::nullopt;
    return value->bytes;
}

std::optional<uint32_t> NumberValue(const PrinterData& data, const std::string& key, const char* name) {
    const std::optional<std::string> bytes = Value(data, key, name, REG_DWORD, 4);
    if (!bytes) return std::nullopt;
    uint32_t number = 0;
    memcpy(&number, bytes->data(), bytes->size());
    return number;
}

// Returns a text up to its first zero character, cut to leave room for a terminator in its field.
std::optional<std::string> TextValue(const PrinterData& data, const std::string& key, const char* name,
                                     size_t field) {
    const std::optional<std::string> bytes = Value(data, key, name, REG_SZ, field);
    return bytes ? std::optional(bytes->substr(0, std::min(bytes->find('\0'), field - 1))) : bytes;
}

std::vector<ExpectedLabel> ExpectedList(const PrinterData& data, uint32_t capacity) {
    std::vector<ExpectedLabel> list;
    for (const std::string& name : data.SubKeys("Label Sizes")) {
        if (list.size() == capacity) break;
        const uint16_t number = NumberOfKey(name);
        const std::string key = "Label Sizes\\" + std::to_string(number);
        const auto label = TextValue(data, key, "name", 64), width = TextValue(data, key, "width", 8),
                   length = TextValue(data, key, "length", 8);
        const auto units = NumberValue(data, key, "units");
        if (NumberValue(data, key, "version") != 1u || !label || !width || !length || !units) continue;
        list.push_back({number, *label, *width, *length, *units});
    }
    return list;
}

void CheckList(const std::vector<LabelSize>& list, const std::vector<ExpectedLabel>& expected) {
    REQUIRE(list.size() == expected.size());
    for (size_t i = 0; i < list.size(); ++i) {
        REQUIRE(list[i].number == expected[i].number);
        REQUIRE(FieldText(list[i].name) == expected[i].name);
        REQUIRE(FieldText(list[i].width) == expected[i].width);
        REQUIRE(FieldText(list[i].length) == expected[i].length);
        REQUIRE(list[i].units == expected[i].units);
    }
}

void CheckNextNumber(const PrinterData& data, DWORD code, uint16_t next) {
    uint16_t largest = 257;
    for (const std::string& name : data.SubKeys("Label Sizes")) {
        largest = std::max(largest, NumberOfKey(name));
    }
    REQUIRE((code == ERROR_SUCCESS) == (largest < UINT16_MAX));
    REQUIRE(code != ERROR_SUCCESS || next == largest + 1);
}

void CheckValidation(HANDLE printer, FuzzInput& choices) {
    DeviceMode record = plain::ValidDeviceMode();
    record.pub.dmPaperSize = choices.Number<int16_t>();
    record.priv.dmPaperSize = choices.Number<int16_t>();
    ValidateDevmode(&record, printer);
    REQUIRE(plain::BrokenRule(record) == nullptr);
}

}  // namespace

void FuzzLabelData(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    FuzzPrinter printer;
    const uint8_t mode = choices.Byte();
    const uint32_t capacity = choices.Byte() % (kMaxLabels + 1);
    if (mode % 4 == 3) {
        madeUpSize = choices.Number<uint16_t>();
        madeUpKeys = choices.TakeText(choices.Byte());
    }
    const int labels = choices.Byte() % 8;
    for (int i = 0; i < labels; ++i) AddFuzzedLabel(choices, printer.Data());
    std::unique_ptr<ImportPatch> patch;
    if (mode % 4 == 3) {
        patch =
            std::make_unique<ImportPatch>(nullptr, "EnumPrinterKeyW", reinterpret_cast<void*>(&AnswerKeys));
    }

    std::vector<LabelSize> list(capacity);
    uint32_t count = 0;
    const DWORD code = ReadPrinterLabelList(printer.Handle(), list.data(), capacity, &count);
    REQUIRE(count <= capacity);
    REQUIRE(code == ERROR_SUCCESS || count == 0);
    uint16_t next = 0;
    const DWORD nextCode = NextLabelNumber(printer.Handle(), &next);
    REQUIRE(nextCode != ERROR_SUCCESS || next >= 258);
    for (uint32_t i = 0; i < count; ++i) {
        REQUIRE(FieldText(list[i].name).size() < sizeof list[i].name);
        REQUIRE(FieldText(list[i].width).size() < sizeof list[i].width);
        REQUIRE(FieldText(list[i].length).size() < sizeof list[i].length);
        REQUIRE(nextCode != ERROR_SUCCESS || list[i].number < next);
    }
    if (patch == nullptr) {
        list.resize(count);
        REQUIRE(code == ERROR_SUCCESS);
        CheckList(list, ExpectedList(printer.Data(), capacity));
        CheckNextNumber(printer.Data(), nextCode, next);
    }
    CheckValidation(printer.Handle(), choices);
}

Seeds LabelDataSeeds() {
    const auto bytes = [](std::initializer_list<int> values) {
        std::string text;
        for (const int value : values) text += static_cast<char>(value);
        return text;
    };
    // Label 258 with all values of the expected types, and a validation that asks for it.
    const std::string label = bytes({1, 2, 1, 0, 0, 4}) + "Wine" + bytes({5}) + "100.5" + bytes({2}) + "-1" +
                              bytes({0x80, 0, 0, 0, 0});
    return {
        bytes({0, 128, 1}) + label + bytes({2, 1, 1, 1}),
        bytes({0, 1, 2}) + label + label + bytes({2, 1, 1, 1}),
        bytes({0, 128, 1, 1, 2, 1, 0, 0, 0xC8, 1}) + "Wine two" + bytes({0xC3, 3, 1, 2, 3, 0xFF, 1}),
        bytes({3, 128, 20, 0, 20}) + std::string("2\0005\0008\0\0\0003\0000\0000\0\0\0", 16),
        bytes({3, 128, 0xFF, 0xFF, 2, 0x39, 0}),
        // Half a character and no terminator.
        bytes({3, 128, 1, 0, 1, 0x32, 0}),
        bytes({3, 128, 5, 0, 5, 0x32, 0, 0x35, 0, 0x38, 0}),
    };
}

}  // namespace orvex::fuzz
