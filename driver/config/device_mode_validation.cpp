#include "driver/config/device_mode_validation.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "driver/config/label_length.h"
#include "driver/config/label_sizes.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// Paper sizes in tenths of a millimetre; the limits above are the first that are too large.
constexpr int16_t kLeastPaperSize = 254;
constexpr int16_t kPaperLengthLimit = 9018;
constexpr int16_t kPaperWidthLimit = 2971;

constexpr int16_t kMostCopies = 10000;

// The valid values of a private field: a range, or a list of values.
struct FieldRule {
    size_t offset;
    size_t size;
    int32_t lowest;
    int32_t highest;
    int32_t replacement;
    const int32_t* allowed;  // null for a range
    size_t allowedCount;
};

constexpr int32_t kAlignments[] = {0, 1, 2};
constexpr int32_t kOversprays[] = {0, 1, 2, 3};
// Deliberate: 0, the bar that is off, is valid, but any wrong value becomes the leading bar.
constexpr int32_t kPurgeBars[] = {1, 2, 0};
constexpr int32_t kPurgeDots[] = {1, 5, 10};
constexpr int32_t kPurgeGaps[] = {5, 10, 15};
constexpr int32_t kPurgeFrequencies[] = {0, 1, 2, 10, 20, 50};
constexpr int32_t kColorModes[] = {kColorModeColor, kColorModeCompositeGray, kColorModeBlackGray};

constexpr FieldRule Range(size_t offset, size_t size, int32_t lowest, int32_t highest, int32_t replacement) {
    return {offset, size, lowest, highest, replacement, nullptr, 0};
}

// The first of the values stands in for any other.
template <size_t N>
constexpr FieldRule OneOf(size_t offset, size_t size, const int32_t (&values)[N]) {
    return {offset, size, 0, 0, values[0], values, N};
}

constexpr FieldRule Flag(size_t offset, size_t size) {
    return Range(offset, size, 0, 1, 0);
}
constexpr FieldRule Adjustment(size_t offset, size_t size) {
    return Range(offset, size, -100, 100, 0);
}

#define PRIVATE(field) offsetof(PrivateDevMode, field), sizeof(PrivateDevMode::field)

constexpr FieldRule kPrivateRules[] = {
    Range(PRIVATE(printSetting), 0, 3, 1),
    Range(PRIVATE(copies), 1, kMostCopies, 1),
    Range(PRIVATE(phHOffset), -1000, 1000, 20),
    Range(PRIVATE(phVOffset), -250, 250, 0),
    Range(PRIVATE(chunksize), 30, 10000, 500),
    OneOf(PRIVATE(alignment), kAlignments),
    OneOf(PRIVATE(overspray), kOversprays),
    OneOf(PRIVATE(purgeBar), kPurgeBars),
    OneOf(PRIVATE(purgeDots), kPurgeDots),
    OneOf(PRIVATE(purgeGap), kPurgeGaps),
    OneOf(PRIVATE(purgeFreq), kPurgeFrequencies),
    OneOf(PRIVATE(colorMode), kColorModes),
    Flag(PRIVATE(colorAdjust)),
    Flag(PRIVATE(rotate180)),
    Flag(PRIVATE(jobCapture)),
    Flag(PRIVATE(noPrint)),
    Flag(PRIVATE(stitched)),
    Flag(PRIVATE(mirrorImage)),
    Flag(PRIVATE(usePrivateCopies)),
    Flag(PRIVATE(feedSide)),
    Flag(PRIVATE(kws)),
    Flag(PRIVATE(kws_fullwidth)),
    Flag(PRIVATE(chunkActive)),
    Adjustment(PRIVATE(adj_brightness)),
    Adjustment(PRIVATE(adj_colortone)),
    Adjustment(PRIVATE(adj_saturation)),
    Adjustment(PRIVATE(adj_cyan)),
    Adjustment(PRIVATE(adj_magenta)),
    Adjustment(PRIVATE(adj_yellow)),
    Adjustment(PRIVATE(adj_black)),
};

// A signed little-endian field of 1, 2 or 4 bytes.
int32_t ReadField(const PrivateDevMode& priv, const FieldRule& rule) {
    uint32_t bits = 0;
    memcpy(&bits, reinterpret_cast<const BYTE*>(&priv) + rule.offset, rule.size);
    const int unused = 32 - static_cast<int>(rule.size) * 8;
    return static_cast<int32_t>(bits << unused) >> unused;
}

void WriteField(PrivateDevMode* priv, const FieldRule& rule, int32_t value) {
    memcpy(reinterpret_cast<BYTE*>(priv) + rule.offset, &value, rule.size);
}

bool IsValid(const FieldRule& rule, int32_t value) {
    if (rule.allowed == nullptr) return value >= rule.lowest && value <= rule.highest;
    const int32_t* end = rule.allowed + rule.allowedCount;
    return std::find(rule.allowed, end, value) != end;
}

void ValidatePublicPart(DEVMODEW* pub) {
    if (pub->dmOrientation != DMORIENT_PORTRAIT && pub->dmOrientation != DMORIENT_LANDSCAPE) {
        pub->dmOrientation = DMORIENT_PORTRAIT;
    }
    if (std::find(std::begin(kResolutions), std::end(kResolutions), pub->dmPrintQuality) ==
        std::end(kResolutions)) {
        pub->dmPrintQuality = kDefaultResolution;
    }
    if (pub->dmCopies < 1 || pub->dmCopies > kMostCopies) pub->dmCopies = 1;
    pub->dmScale = 100;
    pub->dmYResolution = pub->dmPrintQuality;
    pub->dmDuplex = DMDUP_SIMPLEX;
}

void ValidatePrivatePart(PrivateDevMode* priv) {
    for (const FieldRule& rule : kPrivateRules) {
        if (!IsValid(rule, ReadField(*priv, rule))) WriteField(priv, rule, rule.replacement);
    }
}

// Takes size and name of the printer's label with the record's number. Deliberate: the private number, units
// and texts stay as they were; only the name follows.
void TakeListedLabel(DeviceMode* record, HANDLE printer) {
    LabelSize labels[kMaxLabels];
    uint32_t count = 0;
    ReadPrinterLabelList(printer, labels, kMaxLabels, &count);
    const LabelSize* label = std::find_if(labels, labels + count, [record](const LabelSize& each) {
        return each.number == record->pub.dmPaperSize;
    });
    if (label == labels + count) return;
    DEVMODEW& pub = record->pub;
    pub.dmPaperWidth = LabelLengthTenthsMm(FieldText(label->width), label->units);
    pub.dmPaperLength = LabelLengthTenthsMm(FieldText(label->length), label->units);
    WCHAR formName[sizeof(LabelSize::name)];
    const size_t length = WidenText(formName, std::size(formName), FieldText(label->name));
    CopyText(pub.dmFormName, {formName, length});
    CopyText(record->priv.labelName, FieldText(label->name));
}

}  // namespace

void ValidateDevmode(DeviceMode* record, HANDLE printer) {
    const TraceScope trace("ValidateDevmode");
    LogTrace("pdm (before ValidateForm):");
    DumpDevMode(&record->pub);
    ValidateForm(record, printer);
    LogTrace("pdm (After ValidateForm):");
    DumpDevMode(&record->pub);
    ValidatePublicPart(&record->pub);
    ValidatePrivatePart(&record->priv);
    LogTrace("pdm:");
    DumpDevMode(&record->pub);
}

void ValidateForm(DeviceMode* record, HANDLE printer) {
    const TraceScope trace("ValidateForm");
    DEVMODEW& pub = record->pub;
    if (pub.dmPaperSize < kPaperDefault) {
        CopyText(pub.dmFormName, FieldText(L"Custom"));
        pub.dmPaperSize = kPaperCustom;
    } else if (pub.dmPaperSize != record->priv.dmPaperSize) {
        TakeListedLabel(record, printer);
    }
    if (pub.dmPaperLength < kLeastPaperSize || pub.dmPaperLength >= kPaperLengthLimit) {
        pub.dmPaperLength = kDefaultPaperLength;
    }
    if (pub.dmPaperWidth < kLeastPaperSize || pub.dmPaperWidth >= kPaperWidthLimit) {
        pub.dmPaperWidth = kDefaultPaperWidth;
    }
    pub.dmFields |= DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_FORMNAME;
}

}  // namespace orvex
