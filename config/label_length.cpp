#include "config/label_length.h"

#include "config/decimal_text.h"
#include "config/device_mode.h"

namespace {

double TenthsMmPerUnit(uint32_t units) {
    switch (units) {
        case kUnitsMillimetres:
            return 10.0;
        case kUnitsInches:
            return 254.0;
        default:
            return 1.0;
    }
}

}  // namespace

int16_t LabelLengthTenthsMm(std::string_view text, uint32_t units) {
    double length = 0;
    ParseDecimal(text, &length);
    const double tenthsMm = length * TenthsMmPerUnit(units) + 0.5;
    // Written so that what is not a number fails it too.
    const bool fits = tenthsMm > INT16_MIN - 1.0 && tenthsMm < INT16_MAX + 1.0;
    return fits ? static_cast<int16_t>(tenthsMm) : int16_t{0};
}
