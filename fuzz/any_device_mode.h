// Device modes with any values.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "fuzz/input.h"
#include "tests/plain/device_mode_rules.h"

namespace orvex::fuzz {

// Sets fields that the input chooses, of those that a validation restricts, to any values.
inline void SetAnyValues(DeviceMode& mode, FuzzInput& input) {
    for (const plain::Rule& rule : plain::Rules()) {
        if (input.Flag()) plain::SetValue(mode, rule, input.Number<int32_t>());
    }
}

// Returns the input of SetAnyValues() that sets these fields, and no others.
inline std::string InputForFields(std::initializer_list<std::pair<std::string_view, int32_t>> values) {
    std::string input;
    for (const plain::Rule& rule : plain::Rules()) {
        const auto* value = std::find_if(values.begin(), values.end(),
                                         [&](const auto& each) { return each.first == rule.name; });
        input += value != values.end() ? '\1' : '\0';
        for (int shift = 0; value != values.end() && shift < 32; shift += 8)
            input += static_cast<char>(value->second >> shift);
    }
    return input;
}

}  // namespace orvex::fuzz
