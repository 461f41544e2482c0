// The settings of a device mode as people give them: one row of a table for each, with its option, its field,
// its unit and its range.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "driver/config/device_mode.h"

namespace orvex::tools::print {

// A value that an option does not take: names the option, the value and the range.
class OptionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A signed number in a device mode.
struct SettingField {
    size_t offset;  // bytes into a DeviceMode
    size_t size;    // 1, 2 or 4 bytes; 0: no field at all
};

struct SettingWord {
    const char* word;
    int value;
};

struct Setting {
    const char* option;  // "--purge-gap"
    const char* group;   // heading of the help
    SettingField field;
    // What it takes: one of these words, one of these numbers, or a number of this range.
    std::span<const SettingWord> words;
    std::span<const int16_t> numbers;
    int least;
    int most;
    int perUnit;       // steps of the field that make one unit: 10 for tenths of a millimetre
    const char* unit;  // "mm"; empty: none
    const char* help;
    uint32_t flag = 0;             // DM_... bit that says that the public field is set
    SettingField switchedOn = {};  // a field that becomes 1 with it

    // Without a value the option means the first word.
    bool IsSwitch() const;
};

std::span<const Setting> Settings();

// The setting of that option. There must be one.
const Setting& FindSetting(std::string_view option);

int ReadSetting(const DeviceMode& mode, const Setting& setting);
// Writes the value with all that goes with it.
void WriteSetting(DeviceMode& mode, const Setting& setting, int value);

// Reads a value as given, its unit allowed behind a number. Throws OptionError.
int ParseSetting(const Setting& setting, std::string_view text);

// "off, leading or trailing", "5, 10 or 15 mm", "-100.0 to 100.0 mm".
std::string RangeText(const Setting& setting);

// A value of the field: "leading", "2.0 mm".
std::string ValueText(const Setting& setting, int value);

// The complaint about a value: `option: "value" is not allowed; it takes RANGE`.
OptionError WrongValue(std::string_view option, std::string_view value, std::string_view range);

}  // namespace orvex::tools::print
