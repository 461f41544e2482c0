#include "tests/plain/device_mode_rules.h"

#include <cstring>

#include "driver/support/text.h"

namespace orvex::plain {

namespace {

template <int32_t Least, int32_t Most>
bool Within(int32_t value) {
    return value >= Least && value <= Most;
}

template <int32_t... Values>
bool OneOf(int32_t value) {
    return ((value == Values) || ...);
}

constexpr size_t kPrivate = 220;  // offset of the private part

constexpr Rule kRules[] = {
    {"dmOrientation", 76, 2, OneOf<1, 2>, 1},
    {"dmPaperLength", 80, 2, Within<254, 9017>, 2159},
    {"dmPaperWidth", 82, 2, Within<254, 2970>, 2794},
    {"dmScale", 84, 2, OneOf<100>, 100},
    {"dmCopies", 86, 2, Within<1, 10000>, 1},
    {"dmPrintQuality", 90, 2, OneOf<300, 600>, 300},
    {"dmDuplex", 94, 2, OneOf<1>, 1},
    {"colorAdjust", kPrivate + 4, 4, OneOf<0, 1>, 0},
    {"printSetting", kPrivate + 8, 4, Within<0, 3>, 1},
    {"rotate180", kPrivate + 12, 4, OneOf<0, 1>, 0},
    {"mirrorImage", kPrivate + 16, 4, OneOf<0, 1>, 0},
    {"jobCapture", kPrivate + 20, 4, OneOf<0, 1>, 0},
    {"noPrint", kPrivate + 24, 4, OneOf<0, 1>, 0},
    {"stitched", kPrivate + 28, 4, OneOf<0, 1>, 0},
    {"usePrivateCopies", kPrivate + 96, 4, OneOf<0, 1>, 0},
    {"copies", kPrivate + 100, 2, Within<1, 10000>, 1},
    {"chunksize", kPrivate + 102, 2, Within<30, 10000>, 500},
    {"chunkActive", kPrivate + 104, 4, OneOf<0, 1>, 0},
    {"alignment", kPrivate + 108, 2, OneOf<0, 1, 2>, 0},
    {"feedSide", kPrivate + 112, 4, OneOf<0, 1>, 0},
    {"overspray", kPrivate + 116, 2, OneOf<0, 1, 2, 3>, 0},
    {"kws", kPrivate + 120, 4, OneOf<0, 1>, 0},
    {"kws_fullwidth", kPrivate + 124, 4, OneOf<0, 1>, 0},
    {"purgeBar", kPrivate + 128, 2, OneOf<0, 1, 2>, 1},
    {"purgeDots", kPrivate + 130, 2, OneOf<1, 5, 10>, 1},
    {"purgeGap", kPrivate + 132, 2, OneOf<5, 10, 15>, 5},
    {"purgeFreq", kPrivate + 134, 2, OneOf<0, 1, 2, 10, 20, 50>, 0},
    {"phHOffset", kPrivate + 680, 2, Within<-1000, 1000>, 20},
    {"phVOffset", kPrivate + 682, 2, Within<-250, 250>, 0},
    {"colorMode", kPrivate + 684, 4, OneOf<0, 1, 2>, 0},
    {"adj_brightness", kPrivate + 688, 1, Within<-100, 100>, 0},
    {"adj_colortone", kPrivate + 689, 1, Within<-100, 100>, 0},
    {"adj_saturation", kPrivate + 690, 1, Within<-100, 100>, 0},
    {"adj_cyan", kPrivate + 691, 1, Within<-100, 100>, 0},
    {"adj_magenta", kPrivate + 692, 1, Within<-100, 100>, 0},
    {"adj_yellow", kPrivate + 693, 1, Within<-100, 100>, 0},
    {"adj_black", kPrivate + 694, 1, Within<-100, 100>, 0},
};

bool FormNameFits(const DEVMODEW& pub) {
    if (FieldText(pub.dmFormName).size() >= CCHFORMNAME) return false;
    return pub.dmPaperSize != 256 || FieldText(pub.dmFormName) == L"Custom";
}

}  // namespace

std::span<const Rule> Rules() {
    return kRules;
}

int32_t ValueOf(const DeviceMode& record, const Rule& rule) {
    const auto* at = reinterpret_cast<const uint8_t*>(&record) + rule.offset;
    if (rule.size == 1) return static_cast<int8_t>(*at);
    if (rule.size == 2) return static_cast<int16_t>(at[0] | at[1] << 8);
    int32_t value;
    memcpy(&value, at, sizeof value);
    return value;
}

void SetValue(DeviceMode& record, const Rule& rule, int32_t value) {
    memcpy(reinterpret_cast<uint8_t*>(&record) + rule.offset, &value, rule.size);
}

const char* BrokenRule(const DeviceMode& record) {
    const DEVMODEW& pub = record.pub;
    if (pub.dmSpecVersion != 0x0401) return "version";
    if (pub.dmSize != 220 || pub.dmDriverExtra != 696) return "sizes";
    if ((pub.dmFields & 0x0001000E) != 0x0001000E) return "paper flags";
    if (pub.dmPaperSize < 256) return "paper number";
    if (pub.dmYResolution != pub.dmPrintQuality) return "vertical resolution";
    if (!FormNameFits(pub)) return "form name";
    if (record.priv.signature != 0x18284000) return "signature";
    for (const Rule& rule : kRules) {
        if (!rule.valid(ValueOf(record, rule))) return rule.name;
    }
    return nullptr;
}

void ForceIntoRange(DeviceMode& record) {
    for (const Rule& rule : kRules) {
        if (!rule.valid(ValueOf(record, rule))) SetValue(record, rule, rule.replacement);
    }
    record.pub.dmYResolution = record.pub.dmPrintQuality;
}

}  // namespace orvex::plain
