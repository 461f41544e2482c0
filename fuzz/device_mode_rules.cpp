#include "fuzz/device_mode_rules.h"

#include <algorithm>
#include <initializer_list>

#include "support/text.h"

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

#define RULE(condition) \
    if (!(condition)) return #condition

const char* BrokenRule(const DeviceMode& record) {
    const DEVMODEW& pub = record.pub;
    const PrivateDevMode& priv = record.priv;
    RULE(pub.dmSpecVersion == 0x0401);
    RULE(pub.dmSize == 220 && pub.dmDriverExtra == 696);
    RULE((pub.dmFields & 0x0001000E) == 0x0001000E);
    RULE(OneOf(pub.dmOrientation, {1, 2}));
    RULE(pub.dmPaperSize >= 256);
    RULE(Within(pub.dmPaperLength, 254, 9017));
    RULE(Within(pub.dmPaperWidth, 254, 2970));
    RULE(Within(pub.dmCopies, 1, 10000));
    RULE(OneOf(pub.dmPrintQuality, {300, 600}));
    RULE(pub.dmYResolution == pub.dmPrintQuality);
    RULE(pub.dmScale == 100);
    RULE(pub.dmDuplex == 1);
    RULE(FormNameFits(pub));
    RULE(priv.signature == 0x18284000);
    RULE(Within(priv.printSetting, 0, 3));
    RULE(Within(priv.copies, 1, 10000));
    RULE(Within(priv.chunksize, 30, 10000));
    RULE(OneOf(priv.alignment, {0, 1, 2}));
    RULE(OneOf(priv.overspray, {0, 1, 2, 3}));
    RULE(OneOf(priv.purgeBar, {0, 1, 2}));
    RULE(OneOf(priv.purgeDots, {1, 5, 10}));
    RULE(OneOf(priv.purgeGap, {5, 10, 15}));
    RULE(OneOf(priv.purgeFreq, {0, 1, 2, 10, 20, 50}));
    RULE(Within(priv.phHOffset, -1000, 1000));
    RULE(Within(priv.phVOffset, -250, 250));
    RULE(OneOf(priv.colorMode, {0, 1, 2}));
    RULE(IsFlag(priv.colorAdjust));
    RULE(IsFlag(priv.rotate180));
    RULE(IsFlag(priv.mirrorImage));
    RULE(IsFlag(priv.jobCapture));
    RULE(IsFlag(priv.noPrint));
    RULE(IsFlag(priv.stitched));
    RULE(IsFlag(priv.usePrivateCopies));
    RULE(IsFlag(priv.chunkActive));
    RULE(IsFlag(priv.feedSide));
    RULE(IsFlag(priv.kws));
    RULE(IsFlag(priv.kws_fullwidth));
    RULE(Within(priv.adj_brightness, -100, 100));
    RULE(Within(priv.adj_colortone, -100, 100));
    RULE(Within(priv.adj_saturation, -100, 100));
    RULE(Within(priv.adj_cyan, -100, 100));
    RULE(Within(priv.adj_magenta, -100, 100));
    RULE(Within(priv.adj_yellow, -100, 100));
    RULE(Within(priv.adj_black, -100, 100));
    return nullptr;
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
