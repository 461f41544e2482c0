// The settings of a device mode as people give them: a table with one row a setting, which has its option,
// field, unit and range.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "driver/config/device_mode.h"
#include "tools/common/command_line.h"

namespace orvex::tools::print {

// The place of a signed number in a device mode.
struct SettingField {
    size_t offset;  // bytes into a DeviceMode
    size_t size;    // 1, 2 or 4 bytes; 0: there is no field
};

struct SettingWord {
    const char* word;
    int value;
};

struct Setting {
    const char* option;  // "--purge-gap"
    const char* group;   // heading in the help
    SettingField field;
    // The allowed values: one of the words, one of the numbers, or a number in the range.
    std::span<const SettingWord> words;
    std::span<const int16_t> numbers;
    int least;
    int most;
    int perUnit;       // steps of the field per unit: 10 for tenths of a millimeter
    const char* unit;  // "mm"; empty: none
    const char* help;
    uint32_t flag = 0;             // DM_... bit of the public field
    SettingField switchedOn = {};  // a field that is set to 1 as well

    // Returns whether the option takes on and off, and means on if it has no value.
    bool IsSwitch() const;
};

std::span<const Setting> Settings();

// Returns the setting of an option, which must exist.
const Setting& FindSetting(std::string_view option);

int ReadSetting(const DeviceMode& mode, const Setting& setting);
// Writes the value, its DM_... bit and the field that it switches on.
void WriteSetting(DeviceMode& mode, const Setting& setting, int value);

// Parses a value; a number may be followed by its unit. Throws OptionError.
int ParseSetting(const Setting& setting, std::string_view text);

// Returns the allowed values: "off, leading or trailing", "5, 10 or 15 mm", "-100.0 to 100.0 mm".
std::string RangeText(const Setting& setting);

// Returns a value of the field as text: "leading", "2.0 mm".
std::string ValueText(const Setting& setting, int value);

}  // namespace orvex::tools::print
