// Plain definition of the settings file: one value by section and key.
#pragma once

#include <string>

#include "tests/plain/driver/log.h"
#include "tests/plain/driver/world.h"

namespace orvex::plain {

// Returns the value of `key` in `section`, with its line end, as it fits into `capacity` bytes with a
// terminator. Returns an empty text if there is none.
std::string SettingText(const Installation& installation, const std::string& section, const std::string& key,
                        size_t capacity, Log& log);

// Returns the text without the white space around it.
std::string Trimmed(const std::string& text);

// Returns 1 for a value above 0, else 0.
int SettingFlag(const Installation& installation, const std::string& section, const std::string& key,
                Log& log);

// Returns the value as a number, or `absent` without one.
double SettingNumber(const Installation& installation, const std::string& section, const std::string& key,
                     double absent, Log& log);

}  // namespace orvex::plain
