#include "fuzz/device_mode_rules.h"

#include <algorithm>
#include <initializer_list>

#include "driver/support/text.h"

namespace orvex::fuzz {

namespace {

template <typename T>
bool OneOf(T value, std::initializer_list<int> values) {
    return std::find(values.begin(), values.end(), static_cast<int>(value)) != values.end();
}

template <typename T>
bool Within(T value, int lowest, int highest) {
    return value >= lowest && value <= highest;
}

bool IsFlag(int32_t value) {
    return value == 0 || value == 1;
}

// Custom sizes are named so.
bool FormNameFits(const DEVMODEW& pub) {
    if (FieldText(pub.dmFormName).size >= CCHFORMNAME) return false;
    return pub.dmPaperSize != 256 || SameText(FieldText(pub.dmFormName), {L"Custom", 6});
}

}  // namespace

// Each field with what makes its value valid, and the value that stands in for any other.
#define PUBLIC_FIELDS(FIELD)                             \
    FIELD(dmOrientation, OneOf(value, {1, 2}), 1)        \
    FIELD(dmPaperLength, Within(value, 254, 9017), 2159) \
    FIELD(dmPaperWidth, Within(value, 254, 2970), 2794)  \
    FIELD(dmCopies, Within(value, 1, 10000), 1)          \
    FIELD(dmPrintQuality, OneOf(value, {300, 600}), 300) \
    FIELD(dmScale, value == 100, 100)                    \
    FIELD(dmDuplex, value == 1, 1)

#define PRIVATE_FIELDS(FIELD)                                \
    FIELD(printSetting, Within(value, 0, 3), 1)              \
    FIELD(copies, Within(value, 1, 10000), 1)                \
    FIELD(chunksize, Within(value, 30, 10000), 500)          \
    FIELD(alignment, OneOf(value, {0, 1, 2}), 0)             \
    FIELD(overspray, OneOf(value, {0, 1, 2, 3}), 0)          \
    FIELD(purgeBar, OneOf(value, {0, 1, 2}), 1)              \
    FIELD(purgeDots, OneOf(value, {1, 5, 10}), 1)            \
    FIELD(purgeGap, OneOf(value, {5, 10, 15}), 5)            \
    FIELD(purgeFreq, OneOf(value, {0, 1, 2, 10, 20, 50}), 0) \
    FIELD(phHOffset, Within(value, -1000, 1000), 20)         \
    FIELD(phVOffset, Within(value, -250, 250), 0)            \
    FIELD(colorMode, OneOf(value, {0, 1, 2}), 0)             \
    FIELD(colorAdjust, IsFlag(value), 0)                     \
    FIELD(rotate180, IsFlag(value), 0)                       \
    FIELD(mirrorImage, IsFlag(value), 0)                     \
    FIELD(jobCapture, IsFlag(value), 0)                      \
    FIELD(noPrint, IsFlag(value), 0)                         \
    FIELD(stitched, IsFlag(value), 0)                        \
    FIELD(usePrivateCopies, IsFlag(value), 0)                \
    FIELD(chunkActive, IsFlag(value), 0)                     \
    FIELD(feedSide, IsFlag(value), 0)                        \
    FIELD(kws, IsFlag(value), 0)                             \
    FIELD(kws_fullwidth, IsFlag(value), 0)                   \
    FIELD(adj_brightness, Within(value, -100, 100), 0)       \
    FIELD(adj_colortone, Within(value, -100, 100), 0)        \
    FIELD(adj_saturation, Within(value, -100, 100), 0)       \
    FIELD(adj_cyan, Within(value, -100, 100), 0)             \
    FIELD(adj_magenta, Within(value, -100, 100), 0)          \
    FIELD(adj_yellow, Within(value, -100, 100), 0)           \
    FIELD(adj_black, Within(value, -100, 100), 0)

#define RULE(condition) \
    if (!(condition)) return #condition

const char* BrokenRule(const DeviceMode& record) {
    const DEVMODEW& pub = record.pub;
    const PrivateDevMode& priv = record.priv;
    RULE(pub.dmSpecVersion == 0x0401);
    RULE(pub.dmSize == 220 && pub.dmDriverExtra == 696);
    RULE((pub.dmFields & 0x0001000E) == 0x0001000E);
    RULE(pub.dmPaperSize >= 256);
    RULE(pub.dmYResolution == pub.dmPrintQuality);
    RULE(FormNameFits(pub));
    RULE(priv.signature == 0x18284000);
#define CHECK(part, field, valid)                          \
    {                                                      \
        const auto value = (part).field;                   \
        if (!(valid)) return #part "." #field ": " #valid; \
    }
#define CHECK_PUBLIC(field, valid, replacement) CHECK(pub, field, valid)
#define CHECK_PRIVATE(field, valid, replacement) CHECK(priv, field, valid)
    PUBLIC_FIELDS(CHECK_PUBLIC)
    PRIVATE_FIELDS(CHECK_PRIVATE)
    return nullptr;
}

void ForceIntoRange(DeviceMode& record) {
#define FORCE(part, field, valid, replacement)         \
    {                                                  \
        const auto value = record.part.field;          \
        if (!(valid)) record.part.field = replacement; \
    }
#define FORCE_PUBLIC(field, valid, replacement) FORCE(pub, field, valid, replacement)
#define FORCE_PRIVATE(field, valid, replacement) FORCE(priv, field, valid, replacement)
    PUBLIC_FIELDS(FORCE_PUBLIC)
    PRIVATE_FIELDS(FORCE_PRIVATE)
    record.pub.dmYResolution = record.pub.dmPrintQuality;
}

DeviceMode DefaultDeviceMode() {
    DeviceMode record = {};
    record.pub.dmSpecVersion = record.pub.dmDriverVersion = 0x0401;
    record.pub.dmSize = 220;
    record.pub.dmDriverExtra = 696;
    record.pub.dmFields = 0x0001CF0F;
    record.pub.dmOrientation = 1;
    record.pub.dmPaperSize = 256;
    record.pub.dmPaperLength = 1500;
    record.pub.dmPaperWidth = 1000;
    record.pub.dmScale = 100;
    record.pub.dmCopies = 1;
    record.pub.dmPrintQuality = record.pub.dmYResolution = 300;
    record.pub.dmDuplex = 1;
    CopyText(record.pub.dmFormName, {L"Custom", 6});
    record.priv.signature = 0x18284000;
    record.priv.printSetting = 1;
    record.priv.copies = 1;
    record.priv.chunksize = 500;
    record.priv.purgeDots = 1;
    record.priv.purgeGap = 5;
    record.priv.dmPaperSize = 257;
    record.priv.units = 1;
    return record;
}

}  // namespace orvex::fuzz
