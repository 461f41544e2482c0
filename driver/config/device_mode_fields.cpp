#include "driver/config/device_mode_fields.h"

#include <algorithm>
#include <cstring>

namespace orvex {

namespace {

bool IsValid(const ValidValues& values, int32_t number) {
    if (values.list == nullptr) return number >= values.least && number <= values.most;
    const int16_t* end = values.list + values.listed;
    return std::find(values.list, end, number) != end;
}

// Counts the bytes of the private part that belong to exactly one row.
constexpr size_t PrivateBytesInOneRow() {
    size_t bytes = 0;
    for (size_t at = sizeof(DEVMODEW); at < sizeof(DeviceMode); ++at) {
        int rows = 0;
        for (const DeviceModeField& field : kPrivateFields) {
            if (at >= field.offset && at < field.offset + field.size) ++rows;
        }
        if (rows == 1) ++bytes;
    }
    return bytes;
}
static_assert(PrivateBytesInOneRow() + sizeof(PrivateDevMode::reserved110) +
                  sizeof(PrivateDevMode::reserved118) + sizeof(PrivateDevMode::reserved138) +
                  sizeof(PrivateDevMode::reserved695) ==
              sizeof(PrivateDevMode));

}  // namespace

int64_t ReadNumber(const DeviceMode& record, const DeviceModeField& field) {
    uint32_t bits = 0;
    memcpy(&bits, reinterpret_cast<const BYTE*>(&record) + field.offset, field.size);
    if (field.type == FieldType::kUnsigned) return bits;
    const int unused = 32 - static_cast<int>(field.size) * 8;
    return static_cast<int32_t>(bits << unused) >> unused;
}

void ForceValid(DeviceMode* record, const DeviceModeField& field) {
    if (field.type != FieldType::kSigned) return;
    if (IsValid(field.values, static_cast<int32_t>(ReadNumber(*record, field)))) return;
    memcpy(reinterpret_cast<BYTE*>(record) + field.offset, &field.values.replacement, field.size);
}

}  // namespace orvex
