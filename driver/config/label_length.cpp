#include "driver/config/label_length.h"

#include <cmath>

#include "driver/config/decimal_text.h"
#include "driver/config/device_mode.h"
#include "driver/support/lengths.h"

namespace orvex {

namespace {

constexpr double kBeyond64Bits = 9223372036854775808.0;  // 2^63

double TenthsMmPerUnit(uint32_t units) {
    if (units == kUnitsInches) return kTenthsMmPerInch;
    return units == kUnitsMillimeters ? kTenthsMmPerMm : 1;
}

}  // namespace

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
