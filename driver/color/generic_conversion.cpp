#include "driver/color/generic_conversion.h"

#include <algorithm>

#include "driver/color/ink.h"

namespace orvex {

namespace {

// The conversion of one color, component by component. Each ink depends on the color's largest component and
// on the one that the ink absorbs, and on nothing else.
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
    double range_;  // full ink
};

// The conversion of every pair of a largest and another component, for whole tables.
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
    uint8_t ink[256][256];    // by the largest component, then the ink's own
    uint8_t inkOf[256][256];  // by the ink's own component, then the largest
};

// Scratch memory of FillWithGenericConversion, too large for a thread's stack. One table is filled at a time.
ConversionTables tables;

// Fills the 256 colors of a red and a green. The largest component is the larger of the two, or else blue.
void FillRow(InkValue* row, uint32_t red, uint32_t green) {
    const uint32_t larger = std::max(red, green);
    const uint8_t* yellow = tables.ink[larger];
    const InkValue others =
        PackInks(tables.black[larger], tables.ink[larger][red], tables.ink[larger][green], 0);
    for (uint32_t blue = 0; blue <= larger; ++blue) row[blue] = others | PackInks(0, 0, 0, yellow[blue]);

    const uint8_t* cyan = tables.inkOf[red];
    const uint8_t* magenta = tables.inkOf[green];
    for (uint32_t blue = larger + 1; blue < 256; ++blue) {
        row[blue] = PackInks(tables.black[blue], cyan[blue], magenta[blue], 0);
    }
}

}  // namespace

InkValue GenericInkConversion(uint8_t red, uint8_t green, uint8_t blue, double inkScale) {
    const Conversion conversion(inkScale);
    const uint32_t largest = std::max({red, green, blue});
    return PackInks(conversion.Black(largest), conversion.Ink(largest, red), conversion.Ink(largest, green),
                    conversion.Ink(largest, blue));
}

void FillWithGenericConversion(InkValue* table, double inkScale) {
    tables.Fill(Conversion(inkScale));
    for (uint32_t red = 0; red < 256; ++red) {
        for (uint32_t green = 0; green < 256; ++green) {
            FillRow(table + ColorIndex(red, green, 0), red, green);
        }
    }
}

}  // namespace orvex
