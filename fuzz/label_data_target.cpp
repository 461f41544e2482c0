// Labels in the printer's data: whatever the data holds and whatever keys the spooler names, the list that is
// read is whole, a next number lies above all others, and a device mode is given valid sizes by it.

#include <cstring>

#include "config/device_mode_validation.h"
#include "config/label_sizes.h"
#include "fuzz/device_mode_rules.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "host/import_patch.h"
#include "support/text.h"

namespace {

constexpr const char* kValues[] = {"version", "name", "width", "length", "units"};

// The spooler's answer to the question for keys, when the input makes it up.
std::string madeUpKeys;
uint32_t madeUpSize = 0;

DWORD WINAPI AnswerKeys(HANDLE, LPCWSTR, LPWSTR keys, DWORD size, LPDWORD needed) {
    *needed = madeUpSize;
    if (keys == nullptr) return ERROR_MORE_DATA;
    memcpy(keys, madeUpKeys.data(), std::min<size_t>(size, madeUpKeys.size()));
    return ERROR_SUCCESS;
}

// A key of the label list, mostly one that a number names.
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
            // Of any type and length, with or without a terminator.
            data.Set(key, kValues[i], {choices.Byte() % 12u, std::string(choices.TakeText(how % 64))});
        }
    }
}

void CheckValidation(HANDLE printer, FuzzInput& choices) {
    DeviceMode record = DefaultDeviceMode();
    record.pub.dmPaperSize = choices.Number<int16_t>();
    record.priv.dmPaperSize = choices.Number<int16_t>();
    ValidateDevmode(&record, printer);
    REQUIRE(BrokenRule(record) == nullptr);
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
    CheckValidation(printer.Handle(), choices);
}

Seeds LabelDataSeeds() {
    const auto bytes = [](std::initializer_list<int> values) {
        std::string text;
        for (const int value : values) text += static_cast<char>(value);
        return text;
    };
    // Label 258: all values there, of the expected types; then a validation that asks for it.
    const std::string label = bytes({1, 2, 1, 0, 0, 4}) + "Wine" + bytes({5}) + "100.5" + bytes({2}) + "-1" +
                              bytes({0x80, 0, 0, 0, 0});
    return {
        bytes({0, 128, 1}) + label + bytes({2, 1, 1, 1}),
        bytes({0, 1, 2}) + label + label + bytes({2, 1, 1, 1}),
        bytes({0, 128, 1, 1, 2, 1, 0, 0, 0xC8, 1}) + "Wine two" + bytes({0xC3, 3, 1, 2, 3, 0xFF, 1}),
        bytes({3, 128, 20, 0, 20}) + std::string("2\0005\0008\0\0\0003\0000\0000\0\0\0", 16),
        bytes({3, 128, 0xFF, 0xFF, 2, 0x39, 0}),
    };
}
