// Registry exports with device modes, and the bytes of any device mode: a file is refused with a sentence, or
// each device mode has bytes and a place, and no field of it reaches past them.

#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tests/tools/orvexprint/made_export.h"
#include "tools/orvexprint/device_mode_file.h"
#include "tools/orvexprint/device_mode_story.h"
#include "tools/orvexprint/registry_export.h"

namespace orvex::fuzz {

using namespace tools::print;
namespace {

enum : uint8_t { kExport, kWideExport, kAnyFile, kKinds };  // what the first byte chooses

void CheckField(const StoredRecord& record, const DeviceModeField& field) {
    const size_t there = record.BytesOf(field);
    REQUIRE(there <= field.size);
    REQUIRE((record.ValueOf(field) == "-") == (there == 0));
    REQUIRE(record.ValueOf(field).size() <= 300);
}

void CheckRecord(ByteSpan bytes) {
    const std::vector<uint8_t> whole = WithDeclaredSize(bytes);
    REQUIRE(whole.size() >= kLeastDeviceMode && whole.size() >= DeviceModeSize(whole));
    const StoredRecord record(bytes);
    for (const DeviceModeField& field : PublicFields()) CheckField(record, field);
    for (const DeviceModeField& field : kPrivateFields) CheckField(record, field);
}

void CheckFile(std::string_view text) {
    const ByteSpan bytes(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    try {
        for (const StoredDeviceMode& mode : DeviceModesIn(bytes)) {
            REQUIRE(!mode.bytes.empty() || !mode.where.empty());
            REQUIRE(mode.bytes.size() <= bytes.size());
            CheckRecord(mode.bytes);
        }
    } catch (const std::runtime_error& error) {
        REQUIRE(*error.what() != '\0');
    }
}

}  // namespace

void FuzzRegistry(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    switch (choices.Byte() % kKinds) {
        case kExport:
            return CheckFile(std::string(kExportStart) + std::string(choices.RestAsText()));
        case kWideExport:
            return CheckFile(AsUtf16File(std::string(kExportStart) + std::string(choices.RestAsText())));
        default:
            CheckFile(choices.RestAsText());
    }
}

Seeds RegistrySeeds() {
    const std::string mode = tools::ByteMaker().Zeros(68).U16(220).U16(4).Zeros(60).Bytes();
    const std::string values = BinaryValue("Default DevMode", mode) + BinaryValue("Security", "abc");
    const std::string key = "[HKEY_CURRENT_USER\\Printers\\DevModePerUser]\r\n";
    return {std::string(1, kExport) + "[HKLM\\P]\r\n" + values,
            std::string(1, kExport) + key + BinaryValue("\\\\\\\\server\\\\p \\\"q\\\"", mode, "hex(3):") +
                "@=hex:01,2,\\\r\n fF",
            std::string(1, kWideExport) + key + values, std::string(1, kAnyFile) + mode,
            std::string(1, kAnyFile) + AsUtf16File(MakeExport("P", values))};
}

}  // namespace orvex::fuzz
