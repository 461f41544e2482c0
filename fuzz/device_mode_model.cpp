#include "fuzz/device_mode_model.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fuzz/device_mode_rules.h"

namespace orvex::fuzz {

namespace {

constexpr size_t kHeaderBytes = 72;  // what every record has
constexpr size_t kPublicBytes = 220;
constexpr size_t kPrivateBytes = 696;

// A public field that is taken when its bit is set.
struct FlaggedField {
    uint32_t flag;
    size_t offset, size;
};
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
    {0x800, 92, 2},       // colour
    {0x1000, 94, 2},      // duplex
    {0x2000, 96, 2},      // vertical resolution
    {0x4000, 98, 2},      // fonts
    {0x8000, 100, 2},     // collation
    {0x10000, 102, 64},   // form name
    {0x800000, 188, 4},   // colour management: method
    {0x1000000, 192, 4},  // and intent
    {0x2000000, 196, 4},  // media
    {0x4000000, 200, 4},  // dithering
};

// A caller's record for reading.
struct CallersRecord {
    std::span<const uint8_t> bytes;

    uint8_t Byte(size_t at) const { return at < bytes.size() ? bytes[at] : uint8_t{0}; }
    uint16_t Word(size_t at) const { return static_cast<uint16_t>(Byte(at) | Byte(at + 1) << 8); }

    size_t PublicSize() const { return Word(68); }
    size_t PrivateSize() const { return PublicSize() < kHeaderBytes ? 0 : Word(70); }
    // Where a field of the public or private part stands; past the end in a record that has no such part.
    size_t Public(size_t offset) const { return offset < PublicSize() ? offset : bytes.size(); }
    size_t Private(size_t offset) const {
        return offset < PrivateSize() ? PublicSize() + offset : bytes.size();
    }
};

// One that is written to, as far as it reaches.
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

// Into a name of 32 characters, its end included.
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
void ClearBehindEnd(T (&text)[N]) {
    std::fill(std::find(std::begin(text), std::end(text), T{0}), std::end(text), T{0});
}

}  // namespace

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
    // What the caller's record does not reach to stays the printer's.
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
        ClearBehindEnd(record->pub.dmFormName);
        ClearBehindEnd(record->priv.labelName);
    }
    if (memcmp(&a, &b, sizeof a) == 0) return sizeof a;
    const auto* left = reinterpret_cast<const uint8_t*>(&a);
    return static_cast<size_t>(
        std::mismatch(left, left + sizeof a, reinterpret_cast<const uint8_t*>(&b)).first - left);
}

}  // namespace orvex::fuzz
