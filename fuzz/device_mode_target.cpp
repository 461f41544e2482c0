// A caller's device mode: it is taken or refused as the plain definition does, and the merged record is valid
// in every field and equal to that definition's. The caller's record gets the printer's profile and label if
// it lacks them and is not changed otherwise. Nothing past the end that it declares is read or written.

#include <algorithm>
#include <cstring>

#include "driver/config/device_mode_merge.h"
#include "driver/support/text.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "tests/plain/device_mode.h"
#include "tests/plain/device_mode_rules.h"

namespace orvex::fuzz {

using namespace tools;
namespace {

constexpr size_t kLeastBytes = 72;  // size of the smallest record

DeviceMode PrintersDefaults(uint8_t choice) {
    DeviceMode record = plain::ValidDeviceMode();
    if (choice & 1) CopyText(record.priv.colorProfile, {L"paper.zvp", 9});
    if (choice & 2) {
        record.pub.dmPaperSize = record.priv.dmPaperSize = 300;
        CopyText(record.priv.labelName, "Wine");
        CopyText(record.priv.width_string, "4");
        CopyText(record.priv.length_string, "6");
    }
    return record;
}

constexpr plain::ListedLabel kLabels[] = {{258, "Shipping", 1016, 1524}, {300, "Wine", 900, -10}};

// Returns the input as a record, in a block that ends where the record says that it ends.
std::vector<uint8_t> RecordOf(std::span<const uint8_t> bytes) {
    DEVMODEW head = {};
    if (!bytes.empty()) memcpy(&head, bytes.data(), std::min(bytes.size(), kLeastBytes));
    const size_t declared =
        head.dmSize < kLeastBytes ? head.dmSize : size_t{head.dmSize} + head.dmDriverExtra;
    std::vector<uint8_t> record(std::max(declared, kLeastBytes));
    if (!bytes.empty()) memcpy(record.data(), bytes.data(), std::min(bytes.size(), record.size()));
    return record;
}

}  // namespace

void FuzzDeviceModeMerge(std::span<const uint8_t> input) {
    FuzzInput choices(input);
    const DeviceMode printers = PrintersDefaults(choices.Byte());
    const std::vector<uint8_t> given = RecordOf(choices.Rest());
    std::vector<uint8_t> block = given;
    auto* source = reinterpret_cast<DEVMODEW*>(block.data());

    FuzzPrinter printer;
    printer.AddLabel(258, "Shipping", "4", "6", 1);
    printer.AddLabel(300, "Wine", "90", "-1", 0);
    DeviceMode record = printers;
    const BOOL merged = MergeDevMode(&record, source, printer.Handle());
    REQUIRE((merged != FALSE) == plain::IsTaken(given));
    REQUIRE(merged || memcmp(&record, &printers, sizeof record) == 0);
    REQUIRE(plain::FirstDifference(record, plain::Merged(printers, given, kLabels)) == sizeof record);
    REQUIRE(plain::BrokenRule(record) == nullptr);
    REQUIRE(block == plain::GivenBack(printers, given));

    // Merging the result into itself changes nothing.
    DeviceMode again = record;
    DeviceMode copy = record;
    REQUIRE(MergeDevMode(&again, &copy.pub, printer.Handle()));
    REQUIRE(memcmp(&again, &record, sizeof again) == 0);
}

Seeds DeviceModeMergeSeeds() {
    const auto seed = [](char choice, DeviceMode record, WORD size, WORD extra) {
        record.pub.dmSize = size;
        record.pub.dmDriverExtra = extra;
        std::string bytes(reinterpret_cast<const char*>(&record), sizeof record);
        // The private part follows a public part of any size.
        if (size < sizeof(DEVMODEW)) bytes.erase(size, sizeof(DEVMODEW) - size);
        return choice + bytes.substr(0, size_t{size} + extra);
    };
    DeviceMode plain = plain::ValidDeviceMode();
    DeviceMode listed = plain;
    listed.pub.dmPaperSize = 258;
    DeviceMode wild = plain;
    memset(&wild.pub.dmOrientation, 0x7F, 24);
    memset(&wild.priv.colorAdjust, 0xFF, sizeof wild.priv - 4);
    wild.pub.dmFields = 0xFFFFFFFF;
    return {seed(0, plain, 220, 696), seed(3, plain, 212, 696), seed(1, listed, 188, 300),
            seed(3, wild, 220, 696),  seed(2, wild, 220, 0),    seed(3, plain, 100, 200)};
}

}  // namespace orvex::fuzz
