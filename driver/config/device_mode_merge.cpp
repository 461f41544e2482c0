#include "driver/config/device_mode_merge.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "driver/config/device_mode.h"
#include "driver/config/label_sizes.h"
#include "driver/support/log.h"

namespace orvex {

namespace {

// The public layouts and the dmSpecVersion that each belongs to.
struct PublicLayout {
    WORD size;
    WORD version;
};
constexpr PublicLayout kLayouts[] = {{188, 0x0320}, {212, 0x0400}, {220, 0x0401}};

// Returns the version of a record's public layout; the record's own, which may be 0, for an unknown layout.
WORD LayoutVersion(const DEVMODEW* record) {
    for (const PublicLayout& layout : kLayouts) {
        if (record->dmSize == layout.size) return layout.version;
    }
    return LoadDevMode(record).pub.dmSpecVersion;
}

// A public field that is copied when its bit is set in dmFields. The form name, a text, is copied apart.
struct FlaggedField {
    DWORD flag;
    size_t offset;
    size_t size;
};

#define FLAGGED(flag, field) \
    { flag, offsetof(DEVMODEW, field), sizeof(DEVMODEW::field) }

constexpr FlaggedField kFlaggedFields[] = {
    FLAGGED(DM_ORIENTATION, dmOrientation),
    FLAGGED(DM_PAPERSIZE, dmPaperSize),
    FLAGGED(DM_PAPERLENGTH, dmPaperLength),
    FLAGGED(DM_PAPERWIDTH, dmPaperWidth),
    FLAGGED(DM_SCALE, dmScale),
    FLAGGED(DM_COPIES, dmCopies),
    FLAGGED(DM_DEFAULTSOURCE, dmDefaultSource),
    FLAGGED(DM_PRINTQUALITY, dmPrintQuality),
    FLAGGED(DM_COLOR, dmColor),
    FLAGGED(DM_DUPLEX, dmDuplex),
    FLAGGED(DM_YRESOLUTION, dmYResolution),
    FLAGGED(DM_TTOPTION, dmTTOption),
    FLAGGED(DM_COLLATE, dmCollate),
    FLAGGED(DM_NUP, dmNup),
    FLAGGED(DM_ICMMETHOD, dmICMMethod),
    FLAGGED(DM_ICMINTENT, dmICMIntent),
    FLAGGED(DM_MEDIATYPE, dmMediaType),
    FLAGGED(DM_DITHERTYPE, dmDitherType),
};

void DumpPair(const char* firstCaption, const DEVMODEW* first, const char* secondCaption,
              const DEVMODEW* second) {
    DumpDevMode(firstCaption, first);
    DumpDevMode(secondCaption, second);
}

void TraceProfile(const char* format, const PrivateDevMode& priv) {
    LogTrace(format, FieldText(priv.colorProfile), priv.colorProfile[0] != 0 ? 1 : 0);
}

bool KeepLabel(const DeviceMode& printers, DeviceMode* source) {
    if (printers.priv.dmPaperSize < kPaperFirstLabel || source->priv.dmPaperSize >= kPaperFirstLabel)
        return false;
    source->priv.dmPaperSize = printers.priv.dmPaperSize;
    source->priv.units = printers.priv.units;
    CopyText(source->priv.width_string, FieldText(printers.priv.width_string));
    CopyText(source->priv.length_string, FieldText(printers.priv.length_string));
    CopyText(source->priv.labelName, FieldText(printers.priv.labelName));
    source->pub.dmPaperSize = printers.pub.dmPaperSize;
    source->pub.dmPaperLength = printers.pub.dmPaperLength;
    source->pub.dmPaperWidth = printers.pub.dmPaperWidth;
    return true;
}

// Copies the printer's profile and label into a source that names none. Deliberate: into the caller's own.
void KeepPrintersChoices(const DeviceMode& printers, DEVMODEW* source) {
    DeviceMode values = LoadDevMode(source);
    TraceProfile("pdmDest profile [%S] %d", printers.priv);
    TraceProfile("pdmSrc profile [%S] %d", values.priv);
    const bool profileKept = printers.priv.colorProfile[0] != 0 && values.priv.colorProfile[0] == 0;
    if (profileKept) CopyText(values.priv.colorProfile, FieldText(printers.priv.colorProfile));
    const bool labelKept = KeepLabel(printers, &values);
    if (profileKept || labelKept) StoreDevMode(source, values);
}

// Takes size and name of the printer's label. Deliberate: the private number, units and texts stay.
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

int ConvertDevMode(const DEVMODEW* in, DEVMODEW* out) {
    const TraceScope trace("ConvertDevMode");
    DumpPair("pdmIn:", in, "pdmOut:", out);
    if (in == nullptr || LayoutVersion(in) == 0 || out == nullptr) return trace.Count(-1);
    const WORD version = LayoutVersion(out);
    if (version == 0) return trace.Count(-1);

    const DeviceMode source = LoadDevMode(in);
    DeviceMode result = LoadDevMode(out);
    const WORD driverVersion = result.pub.dmDriverVersion;
    const size_t publicBytes = std::min({size_t{in->dmSize}, size_t{out->dmSize}, sizeof result.pub});
    const size_t privateBytes = std::min({PrivateSize(in), PrivateSize(out), sizeof result.priv});
    memcpy(&result.pub, &source.pub, publicBytes);
    memcpy(&result.priv, &source.priv, privateBytes);
    result.pub.dmSpecVersion = version;
    result.pub.dmDriverVersion = driverVersion;
    result.pub.dmSize = out->dmSize;
    result.pub.dmDriverExtra = out->dmDriverExtra;
    StoreDevMode(out, result);

    DumpPair("pdmIn:", in, "pdmOut:", out);
    return trace.Count(static_cast<int>(publicBytes + privateBytes));
}

void CopyDevmode(DeviceMode* destination, const DeviceMode* source) {
    const TraceScope trace("CopyDevmode");
    DumpPair("dest:", &destination->pub, "src:", &source->pub);
    for (const FlaggedField& field : kFlaggedFields) {
        if ((source->pub.dmFields & field.flag) == 0) continue;
        memcpy(reinterpret_cast<BYTE*>(destination) + field.offset,
               reinterpret_cast<const BYTE*>(source) + field.offset, field.size);
        destination->pub.dmFields |= field.flag;
    }
    if (source->pub.dmFields & DM_FORMNAME) {
        CopyText(destination->pub.dmFormName, FieldText(source->pub.dmFormName));
        destination->pub.dmFields |= DM_FORMNAME;
    }
    if (source->priv.signature == kPrivateSignature) destination->priv = source->priv;
    DumpPair("dest:", &destination->pub, "src:", &source->pub);
}

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

BOOL MergeDevMode(DeviceMode* destination, DEVMODEW* source, HANDLE printer) {
    const TraceScope trace("MergeDevMode");
    if (source == nullptr) {
        // Deliberate: an error in the log, yet no failure.
        LogError("pdmSrc NULL");
        return trace.Bool(TRUE);
    }
    const HeapArray<DeviceMode> work = AllocateZeroedArray<DeviceMode>(1);
    if (!work) {
        LogInfo("failed to alloc pdm");
        return trace.Bool(FALSE);
    }
    DumpPair("pdmDest:", &destination->pub, "pdmSrc:", source);
    work[0] = *destination;
    KeepPrintersChoices(*destination, source);
    if (ConvertDevMode(source, &work[0].pub) <= 0) return trace.Bool(FALSE);
    CopyDevmode(destination, &work[0]);
    ValidateDevmode(destination, printer);
    DumpPair("pdmDest:", &destination->pub, "pdmSrc:", &work[0].pub);
    return trace.Bool(TRUE);
}

}  // namespace orvex
