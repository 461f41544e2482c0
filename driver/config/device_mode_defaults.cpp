#include "driver/config/device_mode_defaults.h"

#include <cstring>

#include "driver/config/label_sizes.h"
#include "driver/config/media_import.h"
#include "driver/config/spooler.h"
#include "driver/profiles/profile_catalogue.h"
#include "driver/support/installation.h"
#include "driver/support/log.h"
#include "driver/support/settings_file.h"
#include "driver/support/text.h"

namespace orvex {

namespace {

constexpr DWORD kDefaultFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_DEFAULTSOURCE |
                                 DM_PRINTQUALITY | DM_COLOR | DM_TTOPTION | DM_COLLATE | DM_FORMNAME;
static_assert(kDefaultFields == 0x0001CF03);

// Reads a value of "[UI]" without the white space around it. Returns false when it is not there.
bool ReadSetting(const char* key, char (&value)[kSettingCapacity]) {
    if (LookupString("[UI]", key, value, sizeof value) == 0) return false;
    TrimWhitespace(value);
    return true;
}

void SetPublicDefaults(DEVMODEW* pub) {
    pub->dmSpecVersion = kDevModeVersion;
    pub->dmDriverVersion = kDevModeVersion;
    pub->dmSize = sizeof(DEVMODEW);
    pub->dmDriverExtra = sizeof(PrivateDevMode);
    pub->dmFields = kDefaultFields;
    pub->dmOrientation = DMORIENT_PORTRAIT;
    pub->dmCopies = 1;
    pub->dmDefaultSource = DMBIN_FORMSOURCE;
    pub->dmColor = DMCOLOR_COLOR;
    pub->dmDuplex = DMDUP_SIMPLEX;
    pub->dmTTOption = DMTT_BITMAP;
    pub->dmCollate = DMCOLLATE_FALSE;
    pub->dmPrintQuality = kDefaultResolution;
    pub->dmYResolution = kDefaultResolution;
    CopyText(pub->dmFormName, L"Custom");
    pub->dmPaperSize = kPaperDefault;
    // Deliberate: 11 inches wide and 8.5 long. The private texts say the opposite until a label is chosen.
    pub->dmPaperLength = kDefaultPaperLength;
    pub->dmPaperWidth = kDefaultPaperWidth;
}

// Sets what is not 0 by default. The purge group is 0 until validation, which supplies its real defaults.
void SetPrivateDefaults(PrivateDevMode* priv) {
    priv->signature = kPrivateSignature;
    priv->printSetting = 1;
    priv->copies = 1;
    priv->chunksize = 500;
    priv->phHOffset = 20;
    priv->dmPaperSize = kPaperDefault;
}

// Brings the public paper size in line with a default label that was found.
void TakeDefaultLabel(DeviceMode* record) {
    DEVMODEW& pub = record->pub;
    const PrivateDevMode& priv = record->priv;
    if (pub.dmPaperSize == priv.dmPaperSize) return;
    pub.dmPaperSize = priv.dmPaperSize;
    SetPaperSize(&pub, FieldText(priv.width_string), FieldText(priv.length_string), priv.units);
    LogTrace("set pdm paper %d %d %d", pub.dmPaperSize, pub.dmPaperWidth, pub.dmPaperLength);
}

// Returns the entry of `names` that settings.inf asks for; null when there is none.
const WCHAR* FindWantedProfile(const WCHAR* names) {
    char setting[kSettingCapacity];
    if (!ReadSetting("Default_Profile=", setting)) return nullptr;
    const HeapArray<WCHAR> wanted = DuplicateWidened(setting);
    if (!wanted) return nullptr;
    LogTrace("def Profile:[%S]", wanted.get());
    for (const WCHAR* name = names; *name != 0; name += TextLength(name) + 1) {
        LogTrace("[%S] <> [%S]", wanted.get(), name);
        if (WideView(wanted.get()) == name) return name;
    }
    return nullptr;
}

}  // namespace

BOOL SetupDefaultDevMode(DeviceMode* record, const WCHAR* printerName, HANDLE printer) {
    LoadLogMask();
    const TraceScope trace("SetupDefaultDevMode");
    *record = {};
    if (const HeapArray<WCHAR> folder = FindInstallationFolder()) {
        LogTrace("get app path %S", folder.get());
        ImportMediaFile(printer, folder.get());
    }
    DEVMODEW& pub = record->pub;
    PrivateDevMode& priv = record->priv;
    if (printerName != nullptr)
        CopyText(pub.dmDeviceName, {printerName, TextLength(printerName, CCHDEVICENAME)});
    SetPublicDefaults(&pub);
    SetPrivateDefaults(&priv);
    ChooseDefaultMedia(printer, priv.labelName, priv.width_string, priv.length_string, &priv.units,
                       &priv.dmPaperSize);
    TakeDefaultLabel(record);
    AssignDefaultColorProfile(printer, priv.colorProfile);
    LogTrace("colorProfile:[%S]", FieldText(priv.colorProfile));
    return trace.Bool(TRUE);
}

int ChooseDefaultMedia(HANDLE printer, char (&name)[64], char (&width)[8], char (&length)[8], uint32_t* units,
                       int16_t* paperNumber) {
    *units = kUnitsInches;
    CopyText(width, "8.500");
    CopyText(length, "11.000");
    CopyText(name, "A4");
    char wanted[kSettingCapacity];
    if (!ReadSetting("Default_Media=", wanted)) return 1;
    LogTrace("def media:[%s]", wanted);
    const LabelList list(printer);
    for (const LabelSize& label : list) {
        LogTrace("%d/%d:[%s] <> [%s]", &label - list.begin(), list.Count(), wanted, label.name);
        if (FieldText(label.name) != wanted) continue;
        LogTrace("media [%s]", label.name);
        *units = label.units;
        CopyText(width, FieldText(label.width));
        CopyText(length, FieldText(label.length));
        CopyText(name, FieldText(label.name));
        *paperNumber = static_cast<int16_t>(label.number);
        break;
    }
    return 1;
}

BOOL AssignDefaultColorProfile(HANDLE printer, WCHAR (&profile)[kMaxProfileName]) {
    const TraceScope trace("AssignDefaultColorProfile");
    const HeapArray<WCHAR> printerName = GetPrinterName(printer);
    if (!printerName) return TRUE;
    HeapArray<WCHAR> fileNames;
    HeapArray<WCHAR> displayNames;
    if (!ListProfiles(printerName.get(), &fileNames, &displayNames)) return TRUE;
    const WCHAR* names = fileNames ? fileNames.get() : L"";
    const WCHAR* chosen = FindWantedProfile(names);
    if (chosen == nullptr) chosen = names;
    if (*chosen != 0) CopyText(profile, chosen);
    return TRUE;
}

}  // namespace orvex
