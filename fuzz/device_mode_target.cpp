// A caller's device mode: the merged record is valid in every field or left alone, the caller's own record
// gets the printer's profile and label when it lacks them and is not written otherwise, and nothing outside
// of what the record declares is touched.

#include <algorithm>
#include <cstring>

#include "config/device_mode_merge.h"
#include "fuzz/device_mode_rules.h"
#include "fuzz/fuzz_printer.h"
#include "fuzz/input.h"
#include "support/text.h"

namespace {

constexpr size_t kHeaderBytes = 72;  // what every record has

DeviceMode PrintersDefaults(uint8_t choice) {
    DeviceMode record = DefaultDeviceMode();
    if (choice & 1) CopyText(record.priv.colorProfile, {L"paper.zvp", 9});
    if (choice & 2) {
        record.pub.dmPaperSize = record.priv.dmPaperSize = 300;
        CopyText(record.priv.labelName, "Wine");
        CopyText(record.priv.width_string, "4");
        CopyText(record.priv.length_string, "6");
    }
    return record;
}

// A caller's record in its plain definition: bytes, of which those past its end read as zero and are not
// written.
struct CallersRecord {
    std::vector<uint8_t> bytes;
    size_t publicSize;

    // Where a field of the public or private part stands; past the end in a record that has no such part.
    size_t Public(size_t offset) const { return offset < publicSize ? offset : bytes.size(); }
    size_t Private(size_t offset) const {
        return publicSize >= kHeaderBytes ? publicSize + offset : bytes.size();
    }
    uint8_t Byte(size_t at) const { return at < bytes.size() ? bytes[at] : uint8_t{0}; }
    void Put(size_t at, const void* data, size_t size, size_t end) {
        const size_t reached = std::min({at + size, end, bytes.size()});
        if (at < reached) memcpy(bytes.data() + at, data, reached - at);
    }
    void PutPublic(size_t offset, const void* data, size_t size) {
        Put(Public(offset), data, size, publicSize);
    }
    void PutPrivate(size_t offset, const void* data, size_t size) {
        Put(Private(offset), data, size, bytes.size());
    }
    template <size_t N>
    void PutText(size_t offset, const char (&field)[N]) {
        PutPrivate(offset, field, strlen(field) + 1);
    }
};

// The caller's record after it met the printer's defaults: one without a profile got the printer's, one
// without a label of the printer's list the printer's label.
std::vector<uint8_t> Expected(const DeviceMode& printers, const std::vector<uint8_t>& given,
                              size_t publicSize) {
    CallersRecord record{given, publicSize};
    const PrivateDevMode& priv = printers.priv;
    const auto word = [&](size_t at) { return record.Byte(at) | record.Byte(at + 1) << 8; };
    const bool hasProfile = word(record.Private(160)) != 0;
    const bool hasLabel = static_cast<int16_t>(word(record.Private(136))) >= 258;
    if (priv.colorProfile[0] != 0 && !hasProfile) {
        record.PutPrivate(160, priv.colorProfile, 2 * (TextLength(priv.colorProfile) + 1));
    }
    if (priv.dmPaperSize >= 258 && !hasLabel) {
        record.PutPrivate(136, &priv.dmPaperSize, 2);
        record.PutPrivate(140, &priv.units, 4);
        record.PutText(144, priv.width_string);
        record.PutText(152, priv.length_string);
        record.PutText(32, priv.labelName);
        record.PutPublic(78, &printers.pub.dmPaperSize, 2);
        record.PutPublic(80, &printers.pub.dmPaperLength, 2);
        record.PutPublic(82, &printers.pub.dmPaperWidth, 2);
    }
    return record.bytes;
}

// The record that the input is, in a block that ends where the record says that it ends.
std::vector<uint8_t> RecordOf(std::span<const uint8_t> bytes) {
    DEVMODEW head = {};
    if (!bytes.empty()) memcpy(&head, bytes.data(), std::min(bytes.size(), kHeaderBytes));
    const size_t declared =
        head.dmSize < kHeaderBytes ? head.dmSize : size_t{head.dmSize} + head.dmDriverExtra;
    std::vector<uint8_t> record(std::max(declared, kHeaderBytes));
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
    const size_t publicSize = source->dmSize;

    FuzzPrinter printer;
    printer.AddLabel(258, "Shipping", "4", "6", 1);
    printer.AddLabel(300, "Wine", "90", "-1", 0);
    DeviceMode record = printers;
    const BOOL merged = MergeDevMode(&record, source, printer.Handle());
    REQUIRE(merged || memcmp(&record, &printers, sizeof record) == 0);
    REQUIRE(BrokenRule(record) == nullptr);
    REQUIRE(block == Expected(printers, given, publicSize));

    // Merging what came out into itself changes nothing more.
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
    DeviceMode plain = DefaultDeviceMode();
    DeviceMode listed = plain;
    listed.pub.dmPaperSize = 258;
    DeviceMode wild = plain;
    memset(&wild.pub.dmOrientation, 0x7F, 24);
    memset(&wild.priv.colorAdjust, 0xFF, sizeof wild.priv - 4);
    wild.pub.dmFields = 0xFFFFFFFF;
    return {seed(0, plain, 220, 696), seed(3, plain, 212, 696), seed(1, listed, 188, 300),
            seed(3, wild, 220, 696),  seed(2, wild, 220, 0),    seed(3, plain, 100, 200)};
}
