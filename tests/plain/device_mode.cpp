#include "tests/plain/device_mode.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "tests/plain/device_mode_rules.h"

namespace orvex::plain {

namespace {

constexpr size_t kHeaderBytes = 72;  // of every record
constexpr size_t kPublicBytes = 220;
constexpr size_t kPrivateBytes = 696;

constexpr FlaggedField kFlaggedFields[] = {
    {0x1, 76, 2},         // orientation
    {0x2, 78, 2},         // paper size
    {0x4, 80, 2},         // paper length
    {0x8, 82, 2},         // paper width
    {0x10, 84, 2},        // scale
    {0x40, 180, 4},       // pages a sheet
    {0x100, 86, 2},       // copies
    {0x200, 88, 2},       // source
    {0x400, 90, 2},       // print quality
    {0x800, 92, 2},       // color
    {0x1000, 94, 2},      // duplex
    {0x2000, 96, 2},      // vertical resolution
    {0x4000, 98, 2},      // fonts
    {0x8000, 100, 2},     // collation
    {0x10000, 102, 64},   // form name
    {0x800000, 188, 4},   // color management: method
    {0x1000000, 192, 4},  // and intent
    {0x2000000, 196, 4},  // media
    {0x4000000, 200, 4},  // dithering
};

// A caller's record to read from.
struct CallersRecord {
    std::span<const uint8_t> bytes;

    uint8_t Byte(size_t at) const { return at < bytes.size() ? bytes[at] : uint8_t{0}; }
    uint16_t Word(size_t at) const { return static_cast<uint16_t>(Byte(at) | Byte(at + 1) << 8); }

    size_t PublicSize() const { return Word(68); }
    size_t PrivateSize() const { return PublicSize() < kHeaderBytes ? 0 : Word(70); }
    // Return the place of a field of the public or private part; the record's end if the part is shorter.
    size_t Public(size_t offset) const { return offset < PublicSize() ? offset : bytes.size(); }
    size_t Private(size_t offset) const {
        return offset < PrivateSize() ? PublicSize() + offset : bytes.size();
    }
};

// A caller's record to write to, as far as it reaches.
struct WrittenRecord {
    CallersRecord given;
    std::vector<uint8_t> bytes{given.bytes.begin(), given.bytes.end()};

    void Put(size_t at, const void* data, size_t size, size_t end) {
        const size_t reached = std::min({at + size, end, bytes.size()});
        if (at < reached) memcpy(bytes.data() + at, data, reached - at);
    }
    void PutPublic(size_t offset, const void* data, size_t size) {
        Put(given.Public(offset), data, size, given.PublicSize());
    }
    void PutPrivate(size_t offset, const void* data, size_t size) {
        Put(given.Private(offset), data, size, bytes.size());
    }
    template <size_t N>
    void PutText(size_t offset, const char (&field)[N]) {
        PutPrivate(offset, field, strlen(field) + 1);
    }
};

size_t Characters(const WCHAR* text) {
    size_t count = 0;
    while (text[count] != 0) ++count;
    return count;
}

// Sets the form name: at most 31 characters and their end.
void NameForm(DeviceMode& record, std::string_view name) {
    constexpr size_t kMost = 31;
    memset(record.pub.dmFormName, 0, sizeof record.pub.dmFormName);
    std::copy_n(name.begin(), std::min(name.size(), kMost), record.pub.dmFormName);
}

void TakeLabel(DeviceMode& record, std::span<const ListedLabel> labels) {
    if (record.pub.dmPaperSize <= 256) {
        record.pub.dmPaperSize = 256;
        NameForm(record, "Custom");
        return;
    }
    if (record.pub.dmPaperSize == record.priv.dmPaperSize) return;
    for (const ListedLabel& label : labels) {
        if (label.number != record.pub.dmPaperSize) continue;
        record.pub.dmPaperWidth = label.width;
        record.pub.dmPaperLength = label.length;
        NameForm(record, label.name);
        memcpy(record.priv.labelName, label.name, strlen(label.name) + 1);
        return;
    }
}

template <typename T, size_t N>
void ClearAfterEnd(T (&text)[N]) {
    std::fill(std::find(std::begin(text), std::end(text), T{0}), std::end(text), T{0});
}

// A number or text of the default record.
struct DefaultValue {
    size_t offset, size;
    uint32_t number;
    const char* text = nullptr;
};
constexpr size_t kPrivate = kPublicBytes;
constexpr DefaultValue kDefaultValues[] = {
    {64, 2, 0x0401},                   // dmSpecVersion
    {66, 2, 0x0401},                   // dmDriverVersion
    {68, 2, 220},                      // dmSize
    {70, 2, 696},                      // dmDriverExtra
    {72, 4, 0x0001CF03},               // dmFields
    {76, 2, 1},                        // dmOrientation
    {78, 2, 257},                      // dmPaperSize
    {80, 2, 2159},                     // dmPaperLength
    {82, 2, 2794},                     // dmPaperWidth
    {86, 2, 1},                        // dmCopies
    {88, 2, 15},                       // dmDefaultSource
    {90, 2, 300},                      // dmPrintQuality
    {92, 2, 2},                        // dmColor
    {94, 2, 1},                        // dmDuplex
    {96, 2, 300},                      // dmYResolution
    {98, 2, 1},                        // dmTTOption
    {102, 11, 0, "C\0u\0s\0t\0o\0m"},  // dmFormName
    {kPrivate, 4, 405291008},          // signature
    {kPrivate + 8, 4, 1},              // printSetting
    {kPrivate + 32, 2, 0, "A4"},       // labelName
    {kPrivate + 100, 2, 1},            // copies
    {kPrivate + 102, 2, 500},          // chunksize
    {kPrivate + 136, 2, 257},          // dmPaperSize
    {kPrivate + 140, 4, 1},            // units
    {kPrivate + 144, 5, 0, "8.500"},   // width_string
    {kPrivate + 152, 6, 0, "11.000"},  // length_string
    {kPrivate + 680, 2, 20},           // phHOffset
};

}  // namespace

DeviceMode DefaultDeviceMode() {
    DeviceMode record = {};
    for (const DefaultValue& value : kDefaultValues) {
        const void* from = value.text != nullptr ? static_cast<const void*>(value.text) : &value.number;
        memcpy(reinterpret_cast<uint8_t*>(&record) + value.offset, from, value.size);
    }
    return record;
}

DeviceMode ValidDeviceMode() {
    DeviceMode record = DefaultDeviceMode();
    record.pub.dmFields = 0x0001CF0F;
    record.pub.dmScale = 100;
    record.priv.purgeDots = 1;
    record.priv.purgeGap = 5;
    return record;
}

DeviceMode SmallLabelMode(std::string_view profile) {
    DeviceMode record = ValidDeviceMode();
    record.pub.dmPaperSize = 256;
    record.pub.dmPaperWidth = 300;
    record.pub.dmPaperLength = 400;
    record.priv.alignment = 1;
    record.priv.phHOffset = 0;
    std::copy(profile.begin(), profile.end(), record.priv.colorProfile);
    return record;
}

std::span<const FlaggedField> FlaggedFields() {
    return kFlaggedFields;
}

bool IsTaken(std::span<const uint8_t> bytes) {
    const CallersRecord record = {bytes};
    const size_t size = record.PublicSize();
    if (size == 188 || size == 212 || size == 220) return true;
    return (size > 64 && record.Byte(64) != 0) || (size > 65 && record.Byte(65) != 0);
}

DeviceMode Merged(const DeviceMode& printers, std::span<const uint8_t> record,
                  std::span<const ListedLabel> labels) {
    if (!IsTaken(record)) return printers;
    const std::vector<uint8_t> givenBack = GivenBack(printers, record);
    const CallersRecord callers = {givenBack};
    // The printer's values remain where the caller's record does not reach.
    DeviceMode given = printers;
    memcpy(&given.pub, callers.bytes.data(), std::min(callers.PublicSize(), kPublicBytes));
    const size_t privateBytes = std::min(callers.PrivateSize(), kPrivateBytes);
    if (privateBytes > 0) memcpy(&given.priv, callers.bytes.data() + callers.PublicSize(), privateBytes);

    DeviceMode merged = printers;
    for (const FlaggedField& field : kFlaggedFields) {
        if ((given.pub.dmFields & field.flag) == 0) continue;
        memcpy(reinterpret_cast<uint8_t*>(&merged) + field.offset,
               reinterpret_cast<const uint8_t*>(&given) + field.offset, field.size);
        merged.pub.dmFields |= field.flag;
    }
    merged.pub.dmFormName[31] = 0;
    if (given.priv.signature == 0x18284000) merged.priv = given.priv;
    TakeLabel(merged, labels);
    merged.pub.dmFields |= 0x0001000E;  // paper size, length, width and form name
    ForceIntoRange(merged);
    return merged;
}

std::vector<uint8_t> GivenBack(const DeviceMode& printers, std::span<const uint8_t> bytes) {
    const CallersRecord given = {bytes};
    WrittenRecord record = {given};
    const PrivateDevMode& priv = printers.priv;
    const bool hasProfile = given.Word(given.Private(160)) != 0;
    const bool hasLabel = static_cast<int16_t>(given.Word(given.Private(136))) >= 258;
    if (priv.colorProfile[0] != 0 && !hasProfile) {
        record.PutPrivate(160, priv.colorProfile, 2 * (Characters(priv.colorProfile) + 1));
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

size_t FirstDifference(DeviceMode a, DeviceMode b) {
    for (DeviceMode* record : {&a, &b}) {
        ClearAfterEnd(record->pub.dmFormName);
        ClearAfterEnd(record->priv.labelName);
    }
    if (memcmp(&a, &b, sizeof a) == 0) return sizeof a;
    const auto* left = reinterpret_cast<const uint8_t*>(&a);
    return static_cast<size_t>(
        std::mismatch(left, left + sizeof a, reinterpret_cast<const uint8_t*>(&b)).first - left);
}

}  // namespace orvex::plain
