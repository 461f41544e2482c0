#include "driver/color/generic_conversion.h"

#include <algorithm>

#include "driver/color/color_cache.h"

namespace orvex {

namespace {

// The conversion of one colour, component by component. Each ink depends on the colour's largest component
// and on the one that the ink takes away, and on nothing else.
class Conversion {
  public:
    explicit Conversion(double inkScale) : range_(inkScale * 255 / 100) {}

    uint32_t Black(uint32_t largest) const {
        return static_cast<uint32_t>((1 - largest / 255.0) * range_ + 0.5);
    }
    uint32_t Ink(uint32_t largest, uint32_t component) const {
        if (largest == 0) return 0;
        const double most = largest / 255.0;
        const double perInk = most / range_;
        return static_cast<uint32_t>((most - component / 255.0) / perInk + 0.5);
    }

  private:
    double range_;  // the amount of an ink that is printed whole
};

// The conversion of every pair of a largest and another component, for whole caches.
struct ConversionTables {
    void Fill(const Conversion& conversion) {
        for (uint32_t largest = 0; largest < 256; ++largest) {
            black[largest] = static_cast<uint8_t>(conversion.Black(largest));
            for (uint32_t component = 0; component <= largest; ++component) {
                const uint8_t amount = static_cast<uint8_t>(conversion.Ink(largest, component));
                ink[largest][component] = amount;
                inkOf[component][largest] = amount;
            }
        }
    }
    uint8_t black[256];
    uint8_t ink[256][256];    // by largest component, then the ink's own one
    uint8_t inkOf[256][256];  // the same the other way round
};

// Scratch memory of FillWithGenericConversion, too large for a thread's stack. One cache is filled at a time.
ConversionTables tables;

// Fills the 256 colours of a red and a green. Up to the larger of the two it is that one which is the largest
// component, behind it blue itself.
void FillRow(uint32_t* row, uint32_t red, uint32_t green) {
    const uint32_t larger = std::max(red, green);
    const uint8_t* yellow = tables.ink[larger];
    const uint32_t others = tables.black[larger] | uint32_t{tables.ink[larger][red]} << 8 |
                            uint32_t{tables.ink[larger][green]} << 16;
    for (uint32_t blue = 0; blue <= larger; ++blue) row[blue] = others | uint32_t{yellow[blue]} << 24;

    const uint8_t* cyan = tables.inkOf[red];
    const uint8_t* magenta = tables.inkOf[green];
    for (uint32_t blue = larger + 1; blue < 256; ++blue) {
        row[blue] = tables.black[blue] | uint32_t{cyan[blue]} << 8 | uint32_t{magenta[blue]} << 16;
    }
}

}  // namespace

uint32_t GenericInkConversion(uint8_t red, uint8_t green, uint8_t blue, double inkScale) {
    const Conversion conversion(inkScale);
    const uint32_t largest = std::max({red, green, blue});
    return conversion.Black(largest) | conversion.Ink(largest, red) << 8 |
           conversion.Ink(largest, green) << 16 | conversion.Ink(largest, blue) << 24;
}

void FillWithGenericConversion(uint32_t* cache, double inkScale) {
    tables.Fill(Conversion(inkScale));
    for (uint32_t red = 0; red < 256; ++red) {
        for (uint32_t green = 0; green < 256; ++green) {
            FillRow(cache + ColorIndex(red, green, 0), red, green);
        }
    }
}

}  // namespace orvex
