#include "driver/config/decimal_text.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>

#include "driver/support/heap.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// White space as the "C" locale has it.
constexpr std::string_view kWhitespace = " \t\n\v\f\r";

// A text of fewer bytes, as the length of a label, needs no memory: a label does not lose its size for want
// of some.
constexpr size_t kShortText = 64;

bool IsDecimal(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    bool point = false;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
        } else if (c < '0' || c > '9') {
            return false;
        }
    }
    return true;
}

}  // namespace

DWORD ParseDecimal(const char* text, double* out) {
    return text == nullptr ? kErrorDecimalText : ParseDecimal(std::string_view(text), out);
}

DWORD ParseDecimal(std::string_view text, double* out) {
    if (out == nullptr) return kErrorDecimalOut;
    if (!IsDecimal(text)) return kErrorDecimalSyntax;
    const size_t size = text.size() + 1;
    char shortCopy[kShortText];
    HeapArray<char> longCopy;
    if (size > sizeof shortCopy) {
        longCopy = AllocateArray<char>(size);
        if (!longCopy) return kErrorDecimalMemory;
    }
    char* copy = longCopy ? longCopy.get() : shortCopy;
    CopyText(copy, size, text);
    // atof reads the point of the process's locale.
    if (char* point = strchr(copy, '.')) *point = *localeconv()->decimal_point;
    *out = atof(copy);
    return ERROR_SUCCESS;
}

void TrimWhitespace(char* text) {
    std::string_view kept = text;
    kept.remove_prefix(std::min(kept.find_first_not_of(kWhitespace), kept.size()));
    kept = kept.substr(0, kept.find_last_not_of(kWhitespace) + 1);
    CopyText(text, strlen(text) + 1, kept);
}

}  // namespace orvex
