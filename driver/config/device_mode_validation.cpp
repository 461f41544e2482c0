#include "driver/config/device_mode_validation.h"

#include <iterator>

#include "driver/config/device_mode_fields.h"
#include "driver/config/label_length.h"
#include "driver/config/label_sizes.h"
#include "driver/support/log.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

// Takes size and name of the printer's label with the record's number. Deliberate: the private number, units
// and texts keep their values; only the name follows.
void TakeListedLabel(DeviceMode* record, HANDLE printer) {
    const LabelList list(printer);
    const LabelSize* label = list.FirstOfNumber(record->pub.dmPaperSize);
    if (label == nullptr) return;
    SetPaperSize(&record->pub, FieldText(label->width), FieldText(label->length), label->units);
    WCHAR formName[sizeof(LabelSize::name)];
    WidenText(formName, std::size(formName), FieldText(label->name));
    CopyText(record->pub.dmFormName, formName);
    CopyText(record->priv.labelName, FieldText(label->name));
}

}  // namespace

void ValidateDevmode(DeviceMode* record, HANDLE printer) {
    const TraceScope trace("ValidateDevmode");
    DumpDevMode("pdm (before ValidateForm):", &record->pub);
    ValidateForm(record, printer);
    DumpDevMode("pdm (After ValidateForm):", &record->pub);
    for (const DeviceModeField& field : kPublicFields) ForceValid(record, field);
    for (const DeviceModeField& field : kPrivateFields) ForceValid(record, field);
    record->pub.dmYResolution = record->pub.dmPrintQuality;
    DumpDevMode("pdm:", &record->pub);
}

void ValidateForm(DeviceMode* record, HANDLE printer) {
    const TraceScope trace("ValidateForm");
    DEVMODEW& pub = record->pub;
    if (pub.dmPaperSize < kPaperDefault) {
        CopyText(pub.dmFormName, L"Custom");
        pub.dmPaperSize = kPaperCustom;
    } else if (pub.dmPaperSize != record->priv.dmPaperSize) {
        TakeListedLabel(record, printer);
    }
    ForceValid(record, kPaperLength);
    ForceValid(record, kPaperWidth);
    pub.dmFields |= DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH | DM_FORMNAME;
}

}  // namespace orvex
