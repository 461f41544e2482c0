#include "driver/config/decimal_text.h"

#include <clocale>
#include <cstdlib>
#include <cstring>

#include "driver/support/heap.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// Texts of fewer bytes, such as the length of a label, are read without an allocation: a label keeps its size
// when the process is out of memory.
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
    // atof expects the decimal point of the process's locale.
    if (char* point = strchr(copy, '.')) *point = *localeconv()->decimal_point;
    *out = atof(copy);
    return ERROR_SUCCESS;
}

}  // namespace orvex
