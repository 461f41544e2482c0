// Single values of settings.inf in the installation folder. The file is opened, scanned and closed on every
// look-up, so a changed file takes effect at once.
#pragma once

#include <cstddef>

namespace orvex {

// Reads the value of `key` in `section`, both with their punctuation ("[UI]", "Language="), into `out` of
// `capacity` bytes, terminated. The value keeps its line end. Returns its length in bytes; 0, with `out`
// empty, when it was not found or the file could not be opened.
size_t LookupString(const char* section, const char* key, char* out, size_t capacity);

// Returns 1 when the value's decimal reading is greater than 0, otherwise 0; an absent key is 0.
int LookupFlag(const char* section, const char* key);

// Returns the value's floating-point reading, or `absent` when the key was not found.
double LookupNumber(const char* section, const char* key, double absent);

}  // namespace orvex
