#include "driver/config/label_length.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "driver/config/device_mode.h"
#include "driver/support/lengths.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// Texts of fewer bytes, such as the length of a label, are read without an allocation: a label keeps its size
// when the process is out of memory.
constexpr size_t kShortText = 64;

constexpr double kBeyond64Bits = 9223372036854775808.0;  // 2^63

bool IsDecimal(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    return text.find_first_not_of("0123456789.") == std::string_view::npos &&
           std::count(text.begin(), text.end(), '.') <= 1;
}

double TenthsMmPerUnit(uint32_t units) {
    if (units == kUnitsInches) return kTenthsMmPerInch;
    return units == kUnitsMillimeters ? kTenthsMmPerMm : 1;
}

}  // namespace

DWORD ParseDecimal(std::string_view text, double* out) {
    if (text.data() == nullptr) return kErrorDecimalText;
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

int16_t LabelLengthTenthsMm(std::string_view text, uint32_t units) {
    double length = 0;
    ParseDecimal(text, &length);
    const double tenthsMm = length * TenthsMmPerUnit(units) + 0.5;
    // The conversion of a double to an integer is defined only for a value that the integer can hold.
    const bool fits64Bits = std::abs(tenthsMm) < kBeyond64Bits;
    return fits64Bits ? static_cast<int16_t>(static_cast<int64_t>(tenthsMm)) : int16_t{0};
}

void SetPaperSize(DEVMODEW* pub, std::string_view width, std::string_view length, uint32_t units) {
    pub->dmPaperWidth = LabelLengthTenthsMm(width, units);
    pub->dmPaperLength = LabelLengthTenthsMm(length, units);
}

}  // namespace orvex
