// The valid values of a device mode, field by field, written out by offset.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "driver/config/device_mode.h"

namespace orvex::plain {

// A signed number in the record and the values that it may have, whatever the other fields are.
struct Rule {
    const char* name;
    size_t offset;  // bytes into the record of 916
    size_t size;    // 1, 2 or 4 bytes
    bool (*valid)(int32_t value);
    int32_t replacement;
};

std::span<const Rule> Rules();

// Reads or writes the field of a rule.
int32_t ValueOf(const DeviceMode& record, const Rule& rule);
void SetValue(DeviceMode& record, const Rule& rule, int32_t value);

// Returns the first rule that a merged and validated record breaks, in words; null for a valid record.
const char* BrokenRule(const DeviceMode& record);

// Replaces the values that break a rule, and sets the vertical resolution to the horizontal one.
void ForceIntoRange(DeviceMode& record);

}  // namespace orvex::plain
