// Single values of settings.inf in the installation folder. The file is opened, scanned and closed on every
// look-up, so a changed file takes effect at once.
#pragma once

#include <cstddef>

#include "driver/support/text.h"

namespace orvex {

constexpr size_t kSettingCapacity = 254;  // bytes of most values, terminator included

// Reads the value of `key` in `section`, both with their punctuation ("[UI]", "Language="), into `out` of
// `capacity` bytes, terminated. The value keeps its line end. Returns its length in bytes; 0, with `out`
// empty, when it was not found or the file could not be opened.
size_t LookupString(const char* section, const char* key, char* out, size_t capacity);

// Returns 1 when the value's decimal reading is greater than 0, otherwise 0; an absent key is 0.
int LookupFlag(const char* section, const char* key);

// Returns the value's floating-point reading, or `absent` when the key was not found.
double LookupNumber(const char* section, const char* key, double absent);

// Copies a value of a section to `out`: of the lines for which `valueOf` returns text, the first one's that
// fits, or else the last one's, cut. Returns its length there, 0 when there is none.
template <typename View, typename Lines, typename ValueOf, typename Character>
size_t FindInSection(Lines& lines, View section, ValueOf valueOf, Character* out, size_t capacity) {
    size_t length = 0;
    bool inSection = false;
    for (View line; lines.Next(&line);) {
        if (!line.empty() && line.front() == '[') {
            if (inSection) break;
            inSection = line.starts_with(section);
            continue;
        }
        const View value = inSection ? valueOf(line) : View();
        if (value.empty()) continue;
        CopyText(out, capacity, value);
        if (value.size() < capacity - 1) return value.size();
        // Deliberate: after a value that had to be cut, a later line with the key still replaces it.
        length = capacity - 1;
    }
    return length;
}

}  // namespace orvex
