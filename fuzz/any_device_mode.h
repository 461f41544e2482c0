// Device modes with any values.
#pragma once

#include "fuzz/input.h"
#include "tests/plain/device_mode_rules.h"

namespace orvex::fuzz {

// Sets fields that the input chooses, of those that a validation restricts, to any values.
inline void SetAnyValues(DeviceMode& mode, FuzzInput& input) {
    for (const plain::Rule& rule : plain::Rules()) {
        if (input.Flag()) plain::SetValue(mode, rule, input.Number<int32_t>());
    }
}

// Returns the input of SetAnyValues() that sets every field to a number from -128 to 127.
inline std::string InputForAll(int8_t value) {
    std::string input;
    for (size_t rule = 0; rule < plain::Rules().size(); ++rule) {
        input += {'\1', static_cast<char>(value)};
        input += std::string(3, value < 0 ? '\xFF' : '\0');
    }
    return input;
}

}  // namespace orvex::fuzz
